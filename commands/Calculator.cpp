#include "commands/Calculator.h"

#include "ecm/ResultPolicy.h"

#include <cfloat>

namespace vant {

namespace {

// Every operation is rounded to a double at once.
static_assert(FLT_EVAL_METHOD == 0);

double Apply(std::wstring_view operation, double a, double b) {
    if (operation == L"add")
        return a + b;
    if (operation == L"subtract")
        return a - b;
    if (operation == L"multiply")
        return a * b;
    if (operation == L"divide")
        return a / b; // division by zero is not an error
    if (operation == L"negate")
        return -a;
    return 0.0;
}

} // namespace

void CCalculator::ExecuteCommand() {
    try {
        Calculate();
    } catch (...) {
        // Ends quietly; the result entry keeps its value.
    }
}

void CCalculator::Calculate() const {
    CCheckedResult result;
    CComVariant a = ReadOperandA();
    CComVariant b = ReadOperandB();
    // Both are converted, even if the operation ignores B. A B that was not given counts as 0.
    result = a.ChangeType(VT_R8);
    result = b.ChangeType(VT_R8);
    CComVariant value(Apply(GetProperty(L"operation").Text(), a.Get().dblVal, b.Get().dblVal));
    result = value.ChangeType(VT_BSTR);
    result = SetDataStoreValue(GetProperty(L"dsResult"), value);
}

CComVariant CCalculator::ReadOperandA() const {
    if (!HasProperty(L"dsSourceA"))
        return CComVariant(GetProperty(L"sourceA"));
    CCheckedResult result;
    CComVariant value;
    result = GetDataStoreValue(GetProperty(L"dsSourceA"), value);
    return value;
}

CComVariant CCalculator::ReadOperandB() const {
    CComVariant value;
    if (HasProperty(L"dsSourceB")) {
        CCheckedResult result;
        result = GetDataStoreValue(GetProperty(L"dsSourceB"), value);
    } else if (HasProperty(L"sourceB")) {
        value = CComVariant(GetProperty(L"sourceB"));
    }
    return value;
}

} // namespace vant
