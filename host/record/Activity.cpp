#include "host/record/Activity.h"

#include "host/record/Vocabulary.h"

#include <algorithm>

namespace vant::host {

namespace {

bool IsSame(const Argument& a, const Argument& b) {
    return a.name == b.name && a.value == b.value;
}

bool IsSame(const Record& a, const Record& b) {
    return a.service == b.service && a.operation == b.operation && a.result == b.result &&
           std::equal(a.arguments.begin(), a.arguments.end(), b.arguments.begin(), b.arguments.end(),
                      [](const Argument& one, const Argument& other) { return IsSame(one, other); });
}

std::optional<UsedValue::Kind> KindOf(const Record& call) {
    if (call.operation == operation::SetValue)
        return UsedValue::Kind::DataWritten;
    if (call.operation == operation::SetParameter)
        return UsedValue::Kind::ParameterWritten;
    const bool reads = call.service == service::Parameter || call.service == service::SessionItem;
    if (reads && (call.operation == operation::get_Text || call.operation == operation::get_Value))
        return UsedValue::Kind::ParameterRead;
    return std::nullopt;
}

} // namespace

std::optional<UsedValue> UsedValueOf(const Record& call) {
    const auto kind = KindOf(call);
    const Value* const value = call.Find(argument::value);
    if (!kind || !value || FAILED(call.result.value_or(E_UNEXPECTED)))
        return std::nullopt;
    return UsedValue{*kind, call.Text(*kind == UsedValue::Kind::DataWritten ? argument::name : argument::id),
                     *value};
}

void Activity::Take(const Record& call) {
    if (FAILED(call.result.value_or(S_OK))) {
        const auto same = std::find_if(failedCalls.begin(), failedCalls.end(),
                                       [&call](const FailedCall& each) { return IsSame(each.call, call); });
        if (same != failedCalls.end())
            ++same->times;
        else if (failedCalls.size() < most)
            failedCalls.push_back({call});
        else
            ++omitted;
        return;
    }
    auto used = UsedValueOf(call);
    if (!used)
        return;
    const auto same = std::find_if(values.begin(), values.end(), [&used](const UsedValue& each) {
        return each.kind == used->kind && each.name == used->name;
    });
    if (same != values.end())
        same->value = std::move(used->value);
    else if (values.size() < most)
        values.push_back(std::move(*used));
    else
        ++omitted;
}

void Activities::Take(const Record& record) {
    const bool isCall = record.service != service::Runner;
    if (record.command.empty() || (!isCall && record.operation != event::CommandCreated))
        return;
    std::vector<Activity>& nested = Of(record);
    if (!isCall || nested.empty())
        nested.push_back({.began = record.time});
    if (isCall)
        nested.back().Take(record);
}

Activity Activities::End(const Record& end) {
    std::vector<Activity>& nested = Of(end);
    Activity ended{.began = end.time};
    if (!nested.empty()) {
        ended = std::move(nested.back());
        nested.pop_back();
    }
    if (nested.empty())
        m_current.erase({end.thread, end.command});
    return ended;
}

} // namespace vant::host
