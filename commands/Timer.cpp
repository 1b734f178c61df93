#include "commands/Timer.h"

#include "ecm/ResultPolicy.h"

#include <tuple>

namespace vant {

namespace {

constexpr DWORD tick = 1000; // ms
constexpr CBstrLiteral upCounter(L"upCounter");

CComVariant ToText(LONG number) {
    CCheckedResult result;
    CComVariant text(number);
    result = text.ChangeType(VT_BSTR, lcidEnglishUS);
    return text;
}

} // namespace

void CTimer::ExecutePersistent() {
    try {
        Count();
    } catch (...) {
        // Ends quietly.
    }
}

void CTimer::Count() {
    const LONG length = ReadLength();
    const bool countsUp = HasProperty(L"type") && SameText(GetProperty(L"type").Get(), upCounter.Get());
    const CComBSTR entry = GetProperty(L"dsBase");
    // The first publication is the length as an integer, for both types; later ones are texts. Screens rely
    // on it.
    std::ignore = SetDataStoreValue(entry, CComVariant(length));
    RunOptional(L"startCommandID");
    for (LONG remaining = length; remaining >= 0;) {
        RunOptional(L"tickCommandID");
        if (m_stopEvent.Wait(tick) != WAIT_TIMEOUT)
            return;
        --remaining;
        // Both types count one beyond the end: to -1, or to the length plus 1.
        std::ignore = SetDataStoreValue(entry, ToText(countsUp ? length - remaining : remaining));
    }
    RunOptional(L"stopCommandID");
}

LONG CTimer::ReadLength() const {
    CCheckedResult result;
    CComVariant length(GetLiteralOrReference(L"length", L"dsLength"));
    result = length.ChangeType(VT_I4, lcidEnglishUS);
    return length.Get().lVal;
}

void CTimer::RunOptional(PropertyName commandId) const {
    if (HasProperty(commandId))
        std::ignore = RunCommandFromThread(GetProperty(commandId));
}

} // namespace vant
