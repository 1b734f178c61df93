#include "host/runner/QuestionText.h"

#include "host/engine/objects/EngineAccess.h"
#include "host/procedure/CommandUse.h"
#include "platform/Utf8.h"

namespace vant::host {

namespace {

constexpr const char* unreadable = "?";

std::string TextOfEntry(const std::string& name, const Services& services) {
    CComVariant value;
    if (FAILED(services.data.Read(ToWide(name), value)) || FAILED(value.ChangeType(VT_BSTR, lcidEnglishUS)))
        return unreadable;
    return ToUtf8(TextOf(value.Get().bstrVal));
}

std::string TextOfParameter(const std::string& id, const Services& services) {
    CComBSTR text;
    if (!services.engine || FAILED(ReadText(services.engine->Model(), id, text)))
        return unreadable;
    return ToUtf8(text.Text());
}

} // namespace

std::string ExpandQuestion(std::string_view text, const Services& services) {
    std::string expanded;
    while (!text.empty()) {
        const bool isEntry = text.starts_with(entryReference);
        const bool isReference = isEntry || text.starts_with(parameterReference);
        const std::size_t end = isReference ? text.find(')') : std::string_view::npos;
        if (end == std::string_view::npos) {
            expanded += text.front();
            text.remove_prefix(1);
            continue;
        }
        const std::size_t opening = (isEntry ? entryReference : parameterReference).size();
        const std::string name(text.substr(opening, end - opening));
        expanded += isEntry ? TextOfEntry(name, services) : TextOfParameter(name, services);
        text.remove_prefix(end + 1);
    }
    return expanded;
}

} // namespace vant::host
