#include "host/suite/Xml.h"

#include "platform/Utf8.h"

namespace vant::host {

namespace {

const char* ReferenceTo(wchar_t character) {
    switch (character) {
    case L'&':
        return "&amp;";
    case L'<':
        return "&lt;";
    case L'>':
        return "&gt;";
    case L'"':
        return "&quot;";
    case L'\t':
        return "&#9;";
    case L'\n':
        return "&#10;";
    case L'\r':
        return "&#13;";
    default:
        return nullptr;
    }
}

} // namespace

std::string ToXml(std::string_view text) {
    std::wstring valid;
    std::string xml;
    const auto flush = [&] {
        xml += ToUtf8(valid);
        valid.clear();
    };
    for (const wchar_t each : ToWide(text)) {
        if (const char* const reference = ReferenceTo(each)) {
            flush();
            xml += reference;
        } else {
            const bool isExcluded = each < L' ' || each == L'\xFFFE' || each == L'\xFFFF';
            valid += isExcluded ? L'\xFFFD' : each;
        }
    }
    flush();
    return xml;
}

} // namespace vant::host
