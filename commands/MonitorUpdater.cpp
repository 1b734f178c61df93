#include "commands/MonitorUpdater.h"

#include "ecm/HostPointers.h"
#include "ecm/ResultPolicy.h"

#include <algorithm>
#include <utility>

namespace vant {

namespace {

/// Splits at runs of spaces. A space at the beginning yields an empty first id; one at the end yields
/// nothing.
std::vector<std::wstring> Split(std::wstring_view text) {
    std::vector<std::wstring> ids;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(L' ', start), text.size());
        ids.emplace_back(text.substr(start, end - start));
        start = std::min(text.find_first_not_of(L' ', end), text.size());
    }
    return ids;
}

} // namespace

void CMonitorUpdater::ExecutePersistent() {
    const auto current = CurrentIds();
    for (const std::wstring& id : current->ids)
        Publish(id);
}

/// Splits again only if the text has changed.
std::shared_ptr<const CMonitorUpdater::ParameterIds> CMonitorUpdater::CurrentIds() {
    const CComBSTR text = GetProperty(L"parameterIDs");
    auto current = m_parameterIDs.Get();
    if (!current || current->text != text.Text()) {
        current =
            std::make_shared<const ParameterIds>(ParameterIds{std::wstring(text.Text()), Split(text.Text())});
        m_parameterIDs.Set(current);
    }
    return current;
}

void CMonitorUpdater::Publish(const std::wstring& id) const {
    CCheckedResult result;
    CComPtr<IUnknown> object;
    result = GetParameter(CComBSTR(id), 1, object);
    const TComParameterPtr<CCheckedResult> parameter(object.Get());
    CComBSTR value;
    CComBSTR unitsKey;
    CComBSTR name;
    result = parameter->get_Text(&value);
    result = parameter->get_UnitsKey(&unitsKey);
    result = parameter->get_Name(&name);

    const TComECMServicesPtr<CCheckedResult> services(m_threadService.Get());
    CComPtr<IUnknown> table;
    result = services->GetUnits(&table);
    CComPtr<IUnit> unit;
    result = table ? static_cast<IUnitsTable*>(table.Get())->GetUnit(unitsKey.Get(), &unit) : E_POINTER;
    CComBSTR units;
    result = unit ? unit->get_Text(&units) : E_POINTER;

    const std::wstring prefix = std::wstring(GetProperty(L"dsBaseName").Text()) + id;
    result = SetDataStoreValue(CComBSTR(prefix + L"_name"), CComVariant(std::move(name)));
    result = SetDataStoreValue(CComBSTR(prefix + L"_value"), CComVariant(std::move(value)));
    result = SetDataStoreValue(CComBSTR(prefix + L"_units"), CComVariant(std::move(units)));
    result = SetComponentProperty(GetProperty(L"monitorID"), CComBSTR(L"parameter"), CComBSTR(prefix));
}

} // namespace vant
