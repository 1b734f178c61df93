#include "host/record/ReportText.h"

#include "host/record/Codes.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/text/Printable.h"

#include <fmt/format.h>
#include <vector>

namespace vant::host {

namespace {

/// Cuts a text after so many characters.
std::string Cut(std::string text, std::size_t most) {
    std::size_t characters = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool begins = (static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80U;
        if (begins && characters++ == most)
            return text.substr(0, at) + "...";
    }
    return text;
}

std::string ShortlyReadable(const Value& value) {
    return Cut(Readable(value), 40);
}

} // namespace

std::string Readable(const Value& value) {
    if (const auto* const text = std::get_if<std::string>(&value))
        return text->empty() ? "\"\"" : Printable(*text);
    if (std::holds_alternative<std::nullptr_t>(value))
        return "empty";
    if (const auto* const number = std::get_if<double>(&value))
        return fmt::format("{}", *number);
    return ToJson(value).dump();
}

void ReportText::Take(const Record& record) {
    if (record.service == service::Runner && record.operation == event::ParameterGiven)
        m_parameters[record.Text(argument::id)] = {record.Text(argument::name), record.Text(argument::units)};
}

std::string ReportText::NameOfParameter(const std::string& id) const {
    const auto found = m_parameters.find(id);
    return Printable(found == m_parameters.end() || found->second.name.empty() ? id : found->second.name);
}

std::string ReportText::UnitsOfParameter(const std::string& id) const {
    const auto found = m_parameters.find(id);
    return found == m_parameters.end() ? std::string() : Printable(found->second.units);
}

std::string ReportText::WithUnits(const std::string& id, std::string text) const {
    const std::string units = UnitsOfParameter(id);
    return units.empty() ? text : text + ' ' + units;
}

std::string ReportText::Describe(const UsedValue& used) const {
    const std::string value = ShortlyReadable(used.value);
    switch (used.kind) {
    case UsedValue::Kind::DataWritten:
        return fmt::format("{} = {}", Printable(used.name), value);
    case UsedValue::Kind::ParameterRead:
        return fmt::format("{} = {}", NameOfParameter(used.name), WithUnits(used.name, value));
    default:
        return fmt::format("{} set to {}", NameOfParameter(used.name), WithUnits(used.name, value));
    }
}

std::string ReportText::DescribeCall(const Record& call) const {
    std::vector<std::string> arguments;
    for (const Argument& each : call.arguments)
        arguments.push_back(fmt::format("{} = {}", each.name, Printable(ToJson(each.value).dump())));
    return fmt::format("{} {}{}{}: {}", call.service, call.operation, arguments.empty() ? "" : " ",
                       fmt::join(arguments, ", "), DescribeCode(call.result.value_or(S_OK)));
}

std::string ReportText::DescribeUnmet(const Record& evaluation) const {
    if (evaluation.service != service::ConditionSet || !evaluation.Find(argument::failed))
        return {};
    const HRESULT result = evaluation.result.value_or(S_OK);
    if (!evaluation.Find(argument::limits))
        return Printable(evaluation.Text(argument::failed)) +
               (FAILED(result) ? ", " + DescribeCode(result) : "");
    const std::string id = evaluation.Text(argument::parameter);
    const std::string subject =
        id.empty() ? "data " + Printable(evaluation.Text(argument::data)) : NameOfParameter(id);
    const Value* const value = evaluation.Find(argument::value);
    return fmt::format("{} {}, required {}", subject,
                       value ? WithUnits(id, ShortlyReadable(*value)) : DescribeCode(result),
                       Printable(evaluation.Text(argument::limits)));
}

} // namespace vant::host
