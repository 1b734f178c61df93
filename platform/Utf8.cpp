#include "platform/Utf8.h"

#include <cstddef>

namespace vant {

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr char32_t lastCode = 0x10FFFF;

bool IsHighSurrogate(char32_t code) {
    return code >= 0xD800 && code <= 0xDBFF;
}

bool IsLowSurrogate(char32_t code) {
    return code >= 0xDC00 && code <= 0xDFFF;
}

bool IsCharacter(char32_t code) {
    return code <= lastCode && !IsHighSurrogate(code) && !IsLowSurrogate(code);
}

void AppendUtf8(std::string& out, char32_t code) {
    const auto append = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    const auto appendTail = [&](int shift) { append(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | code >> 6);
        appendTail(0);
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        appendTail(6);
        appendTail(0);
    } else {
        append(0xF0 | code >> 18);
        appendTail(12);
        appendTail(6);
        appendTail(0);
    }
}

void AppendWide(std::wstring& out, char32_t code) {
    if (sizeof(wchar_t) == 2 && code >= 0x10000) {
        out.push_back(static_cast<wchar_t>(0xD7C0 + (code >> 10)));
        out.push_back(static_cast<wchar_t>(0xDC00 + (code & 0x3FF)));
    } else {
        out.push_back(static_cast<wchar_t>(code));
    }
}

struct Decoded {
    char32_t code;
    std::size_t length;
};

Decoded DecodeFirst(std::string_view utf8) {
    const auto byte = [utf8](std::size_t index) { return static_cast<unsigned char>(utf8[index]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (lead < 0xC0 || lead >= 0xF8 || utf8.size() < length)
        return {replacement, 1};
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return {replacement, 1};
        code = code << 6 | (byte(i) & 0x3FU);
    }
    if (code < smallest[length] || !IsCharacter(code))
        return {replacement, 1};
    return {code, length};
}

} // namespace

std::string ToUtf8(std::wstring_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto code = static_cast<char32_t>(text[i]);
        if (IsHighSurrogate(code) && i + 1 < text.size() &&
            IsLowSurrogate(static_cast<char32_t>(text[i + 1]))) {
            ++i;
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<char32_t>(text[i]) - 0xDC00);
        }
        AppendUtf8(result, IsCharacter(code) ? code : replacement);
    }
    return result;
}

std::wstring ToWide(std::string_view utf8) {
    std::wstring result;
    result.reserve(utf8.size());
    while (!utf8.empty()) {
        const Decoded decoded = DecodeFirst(utf8);
        AppendWide(result, decoded.code);
        utf8.remove_prefix(decoded.length);
    }
    return result;
}

std::filesystem::path PathFromUtf8(std::string_view utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string PathToUtf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace vant
