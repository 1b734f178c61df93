#include "host/text/Printable.h"

#include <algorithm>

namespace vant::host {

namespace {

std::string Escaped(unsigned char character) {
    switch (character) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        constexpr char digits[] = "0123456789ABCDEF";
        return {'\\', 'x', digits[character >> 4], digits[character & 0xF]};
    }
}

} // namespace

std::string Printable(std::string_view utf8) {
    constexpr unsigned char firstOfC1 = 0xC2; // U+0080 to U+009F are C2 80 to C2 9F.
    std::string result;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const auto next = static_cast<unsigned char>(i + 1 < utf8.size() ? utf8[i + 1] : '\0');
        if (byte < 0x20 || byte == 0x7F)
            result += Escaped(byte);
        else if (byte == firstOfC1 && next >= 0x80 && next < 0xA0)
            result += Escaped((++i, next));
        else
            result.push_back(utf8[i]);
    }
    return result;
}

std::string Quoted(std::string_view text) {
    return std::string(1, '\'').append(text).append(1, '\'');
}

std::size_t WidthOf(std::string_view utf8) {
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char each) { return (each & 0xC0) != 0x80; }));
}

} // namespace vant::host
