#include "host/conditions/Limits.h"

#include "host/object/VariantValue.h"
#include "host/record/Json.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <string_view>

namespace vant::host {

namespace {

/// The value as one of the type with which it is compared; null if it cannot be converted.
Value ConvertedTo(const Value& limit, const Value& value) {
    const VARTYPE type = std::holds_alternative<std::string>(limit) ? VT_BSTR
                         : std::holds_alternative<bool>(limit)      ? VT_BOOL
                                                                    : VT_R8;
    CComVariant converted = ToVariant(value);
    return SUCCEEDED(converted.ChangeType(type, lcidEnglishUS)) ? ToValue(converted.Get()) : Value(nullptr);
}

/// Whether a text fits a pattern, in which * stands for any characters and ? for one.
bool Fits(std::string_view text, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t next = 0;
    std::size_t star =
        std::string_view::npos; // The last * so far, and the first character after what it stands for.
    std::size_t after = 0;
    while (at < text.size()) {
        if (next < pattern.size() && pattern[next] == '*') {
            star = next++;
            after = at;
        } else if (next < pattern.size() && pattern[next] == '?') {
            do
                ++at;
            while (at < text.size() && (text[at] & 0xC0) == 0x80); // The whole character.
            ++next;
        } else if (next < pattern.size() && pattern[next] == text[at]) {
            ++at;
            ++next;
        } else if (star != std::string_view::npos) {
            next = star + 1;
            at = ++after;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', next) == std::string_view::npos;
}

} // namespace

bool HasAny(const Limits& limits) {
    return !limits.comparisons.empty() || !limits.oneOf.empty() || limits.like;
}

std::string Describe(const Limits& limits) {
    std::vector<std::string> texts;
    for (const auto& [comparison, value] : limits.comparisons)
        texts.push_back(fmt::format("{} {}", NameOf(comparison), ToJson(value).dump()));
    if (!limits.oneOf.empty()) {
        Json values = Json::array();
        for (const Value& each : limits.oneOf)
            values.push_back(ToJson(each));
        texts.push_back("oneOf " + values.dump());
    }
    if (limits.like)
        texts.push_back("like " + Json(*limits.like).dump());
    return fmt::format("{}", fmt::join(texts, ", "));
}

bool Satisfies(const Limits& limits, const Value& value) {
    const auto is = [&value](const Value& limit) {
        return Holds(Comparison::Is, ConvertedTo(limit, value), limit);
    };
    if (!limits.oneOf.empty() && std::none_of(limits.oneOf.begin(), limits.oneOf.end(), is))
        return false;
    if (limits.like) {
        const Value text = ConvertedTo(*limits.like, value);
        const auto* const converted = std::get_if<std::string>(&text);
        if (!converted || !Fits(*converted, *limits.like))
            return false;
    }
    return std::all_of(limits.comparisons.begin(), limits.comparisons.end(), [&](const Limit& limit) {
        const Value converted = ConvertedTo(limit.value, value);
        return !std::holds_alternative<std::nullptr_t>(converted) &&
               Holds(limit.comparison, converted, limit.value);
    });
}

} // namespace vant::host
