#pragma once

#include "platform/Bstr.h"

#include <cstddef>
#include <map>
#include <span>
#include <string_view>

namespace vant {

/// The name of a property, or empty. The length of a literal is known at compile time.
struct PropertyName : std::wstring_view {
    constexpr PropertyName(std::nullptr_t) noexcept {}
    constexpr PropertyName(std::wstring_view name) noexcept : std::wstring_view(name) {}
    template <std::size_t size>
    constexpr PropertyName(const wchar_t (&literal)[size]) noexcept : std::wstring_view(literal, size - 1) {}

    constexpr explicit operator bool() const noexcept { return !empty(); }
};

/// One property that a command class accepts.
struct PropertyRow {
    PropertyName name;
    /// A second name of the same property, whose value is given another way (literally, or through the data
    /// store), or empty. The two names exclude each other.
    PropertyName alternativeName;
    bool required;
};

/// All rows of one class, in order.
using PropertyTable = std::span<const PropertyRow>;

/// The properties that were set on one command, by name. A name keeps its first value.
using PropertyMap = std::map<CComBSTR, CComBSTR, LocaleLess>;

/// The value of a property; null if it was not set. Names are compared character by character: there are few,
/// so a search in order costs less than comparisons by locale.
const CComBSTR* FindProperty(const PropertyMap& properties, PropertyName name) noexcept;

/// Whether `name` is a name or alternative name of the table, character for character.
bool IsDeclaredProperty(PropertyTable table, std::wstring_view name) noexcept;

/// Whether every required property is given, and none by both of its names. An empty value counts as given.
bool ValidateProperties(PropertyTable table, const PropertyMap& properties);

} // namespace vant
