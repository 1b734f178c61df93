#include "commands/ParameterSampler.h"

#include "ecm/Conversion.h"
#include "ecm/ResultPolicy.h"

#include <algorithm>

namespace vant {

void CParameterSampler::ExecutePersistent() {
    const LONG period = ReadNumber(L"period");
    const LONG numSamples = ReadNumber(L"numSamples");
    if (IsStoppedWithin(ReadNumber(L"delay")))
        return;
    double sum = 0.0;
    for (LONG counter = 0; counter < numSamples; ++counter) {
        sum += ReadParameterAsDouble(GetProperty(L"parameterID"));
        // The last reading is followed by a wait, too.
        if (IsStoppedWithin(period))
            return;
    }
    CCheckedResult result;
    CComVariant mean(sum / numSamples); // not a number if numSamples is 0
    result = mean.ChangeType(VT_BSTR);
    result = SetDataStoreValue(GetProperty(L"dsTarget"), mean);
    if (IsStoppedWithin(0))
        return;
    result = ChooseTransition(L"completionTransition"); // null if it was not given
}

/// 0 for a property that was not set or is not a number.
LONG CParameterSampler::ReadNumber(PropertyName name) const {
    return ToLongOrZero(CComVariant(GetProperty(name)), lcidEnglishUS);
}

/// Waits; a negative time counts as 0.
bool CParameterSampler::IsStoppedWithin(LONG milliseconds) {
    return m_stopEvent.Wait(static_cast<DWORD>(std::max<LONG>(milliseconds, 0))) != WAIT_TIMEOUT;
}

} // namespace vant
