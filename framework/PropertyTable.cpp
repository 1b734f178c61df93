#include "framework/PropertyTable.h"

#include <algorithm>

namespace vant {

const CComBSTR* FindProperty(const PropertyMap& properties, PropertyName name) noexcept {
    for (const auto& [key, value] : properties) {
        if (key.Text() == name)
            return &value;
    }
    return nullptr;
}

bool IsDeclaredProperty(PropertyTable table, std::wstring_view name) noexcept {
    return std::any_of(table.begin(), table.end(), [name](const PropertyRow& row) {
        return name == row.name || (row.alternativeName && name == row.alternativeName);
    });
}

bool ValidateProperties(PropertyTable table, const PropertyMap& properties) {
    return std::all_of(table.begin(), table.end(), [&properties](const PropertyRow& row) {
        if (!row.alternativeName)
            return !row.required || FindProperty(properties, row.name);
        const bool byName = FindProperty(properties, row.name);
        const bool byAlternative = FindProperty(properties, row.alternativeName);
        return byName != byAlternative || (!byName && !row.required);
    });
}

} // namespace vant
