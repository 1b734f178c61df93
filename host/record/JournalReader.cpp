#include "host/record/JournalReader.h"

#include "host/record/Json.h"

#include <charconv>
#include <cstddef>
#include <fmt/format.h>
#include <string>
#include <string_view>
#include <system_error>

namespace vant::host {

namespace {

HRESULT CodeIn(std::string_view text) {
    std::uint32_t code = 0;
    const bool isCode = text.size() == 10 && text.starts_with("0x");
    const auto [end, mistake] =
        std::from_chars(text.data() + (isCode ? 2 : 0), text.data() + text.size(), code, 16);
    if (!isCode || mistake != std::errc() || end != text.data() + text.size())
        throw JournalError("'result' is not a code such as 0x80004005");
    return static_cast<HRESULT>(code);
}

/// Throws Json::exception or JournalError.
Record RecordIn(const Json& line) {
    const auto textOrEmpty = [&line](const char* key) {
        const Json& value = line.at(key);
        return value.is_null() ? std::string() : value.get<std::string>();
    };
    Record record;
    record.time = line.at("time").get<std::int64_t>();
    record.thread = line.at("thread").get<std::string>();
    record.command = textOrEmpty("command");
    record.service = line.at("service").get<std::string>();
    record.operation = line.at("operation").get<std::string>();
    for (const auto& [name, value] : line.at("arguments").get_ref<const Json::object_t&>())
        record.Add(name, ToValue(value));
    if (const std::string result = textOrEmpty("result"); !result.empty())
        record.result = CodeIn(result);
    return record;
}

} // namespace

std::vector<Record> ReadJournal(std::istream& in) {
    std::vector<Record> records;
    std::string line;
    for (std::size_t number = 1; std::getline(in, line); ++number) {
        try {
            records.push_back(RecordIn(Json::parse(line)));
        } catch (const std::exception& failure) {
            if (in.eof() && !records.empty())
                break; // The end of the line is missing.
            const auto* const mistake = dynamic_cast<const JournalError*>(&failure);
            throw JournalError(fmt::format("line {} is not a record of a journal{}{}", number,
                                           mistake ? ": " : "", mistake ? mistake->what() : ""));
        }
    }
    if (in.bad())
        throw JournalError("it cannot be read to its end");
    if (records.empty())
        throw JournalError("it has no records");
    return records;
}

} // namespace vant::host
