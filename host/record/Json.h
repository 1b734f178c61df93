#pragma once

#include "host/record/Journal.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

namespace vant::host {

/// JSON whose keys keep the order in which they were added.
using Json = nlohmann::ordered_json;

/// A number, a text, true, false or null. Numbers that JSON does not know become the texts "NaN", "Infinity"
/// and "-Infinity".
Json ToJson(const Value& value);

/// The value that ToJson has made a number, a text, true, false or null of; those texts stay texts. Null for
/// anything else.
Value ToValue(const Json& json);

/// "0x" and eight hexadecimal digits.
std::string ToText(HRESULT code);

/// The keys time, thread, command, service, operation, arguments, result, in this order. `command` and
/// `result` are null if the record has none; a result is written as ToText does.
Json ToJson(const Record& record);

/// Writes each record as one line of JSON in UTF-8, ended by "\n". Failed writes show in the stream's state.
class JsonLinesWriter {
public:
    /// The stream must outlive the writer and be open in binary mode.
    explicit JsonLinesWriter(std::ostream& out) : m_out(out) {}
    /// Flushes each line, so that the journal of a run that is killed is there up to that moment.
    void operator()(const Record& record) { m_out << ToJson(record).dump() << '\n' << std::flush; }

private:
    std::ostream& m_out;
};

} // namespace vant::host
