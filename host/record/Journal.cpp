#include "host/record/Journal.h"

#include "host/record/CallScope.h"
#include "host/record/Vocabulary.h"
#include "platform/Clock.h"

#include <algorithm>
#include <utility>

namespace vant::host {

const Value* Record::Find(std::string_view name) const {
    const auto found = std::find_if(arguments.begin(), arguments.end(),
                                    [name](const Argument& argument) { return argument.name == name; });
    return found == arguments.end() ? nullptr : &found->value;
}

std::string Record::Text(std::string_view name) const {
    const Value* const value = Find(name);
    const auto* const text = value ? std::get_if<std::string>(value) : nullptr;
    return text ? *text : std::string();
}

Journal::Journal() : Journal([start = ClockMilliseconds()] { return ClockMilliseconds() - start; }) {}

void Journal::Add(Record record) noexcept {
    try {
        record.thread = CurrentThread();
        record.command = CurrentCommand();
        const std::lock_guard lock(m_order);
        record.time = m_clock();
        for (const Observer& observer : m_observers)
            observer(record);
    } catch (...) {
        m_complete = false;
    }
}

void Journal::AddEvent(const char* event, std::vector<Argument> arguments, std::optional<HRESULT> result) {
    Record record;
    record.service = service::Runner;
    record.operation = event;
    record.arguments = std::move(arguments);
    record.result = result;
    Add(std::move(record));
}

} // namespace vant::host
