#include "commands/FaultArrayChecker.h"

#include "ecm/HostPointers.h"
#include "ecm/ResultPolicy.h"

#include <optional>
#include <tuple>

namespace vant {

namespace {

/// The two names of one field of a fault record.
struct FieldNames {
    CBstrLiteral<7> name;
    CBstrLiteral<9> otherName;

    bool Contain(BSTR text) const { return SameText(text, name.Get()) || SameText(text, otherName.Get()); }
};
constexpr FieldNames statusField{L"199009", L"16786047"};
constexpr FieldNames faultCodeField{L"199008", L"16786048"};
constexpr CBstrLiteral activeStatus(L"Active");

constexpr LONG faultArrayKind = 2; // parameters have kind 1

/// Item number `index`, counted from 0, of a list that itself counts from 1.
template <class Item, class List>
CComPtr<Item> ItemAt(List& list, LONG index) {
    CCheckedResult result;
    CComPtr<Item> item;
    result = list.get_Item(CComVariant(index + 1).Get(), &item);
    result = item ? S_OK : E_POINTER;
    return item;
}

/// The value of the first field with either name, or nothing. Later fields are not read.
std::optional<CComBSTR> ReadField(IFaultRecord& record, const FieldNames& names) {
    CCheckedResult result;
    LONG count = 0;
    result = record.get_Count(&count);
    for (LONG i = 0; i < count; ++i) {
        const auto field = ItemAt<IFaultField>(record, i);
        CComBSTR name;
        result = field->get_Name(&name);
        if (!names.Contain(name.Get()))
            continue;
        CComBSTR value;
        result = field->get_Value(&value);
        return value;
    }
    return std::nullopt;
}

bool IsActive(IFaultRecord& record) {
    const auto status = ReadField(record, statusField);
    return status && SameText(status->Get(), activeStatus.Get());
}

/// The first active record, or null.
CComPtr<IFaultRecord> FindActive(IFaultRecordList& records) {
    CCheckedResult result;
    LONG count = 0;
    result = records.get_Count(&count);
    for (LONG i = 0; i < count; ++i) {
        auto record = ItemAt<IFaultRecord>(records, i);
        if (IsActive(*record.Get()))
            return record;
    }
    return {};
}

} // namespace

void CFaultArrayChecker::ExecuteCommand() {
    try {
        Check();
    } catch (...) {
        // Ends quietly: nothing further is stored, and no transition is chosen.
    }
}

void CFaultArrayChecker::Check() const {
    CCheckedResult result;
    CComPtr<IUnknown> object;
    result = GetParameter(GetProperty(L"arrayID"), faultArrayKind, object);
    CComPtr<IFaultArray> array;
    std::ignore = object.QueryInterface(&array);
    CComPtr<IUnknown> list;
    result = array ? array->get_Records(&list) : E_POINTER;
    const THostPtr<IFaultRecordList, CCheckedResult> records(list.Get());
    const auto active = FindActive(*records.Get());
    if (!active) {
        if (HasProperty(L"successTransitionID"))
            result = ChooseTransition(L"successTransitionID");
        return;
    }
    if (HasProperty(L"dsFaultCode")) {
        const CComVariant code(ReadField(*active.Get(), faultCodeField).value_or(CComBSTR(L"")));
        result = SetDataStoreValue(GetProperty(L"dsFaultCode"), code);
    }
    if (HasProperty(L"failTransitionID"))
        result = ChooseTransition(L"failTransitionID");
}

} // namespace vant
