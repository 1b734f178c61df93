#include "commands/ThrottleAdjuster.h"

#include "ecm/ECMParameter2.h"

#include <tuple>

namespace vant {

namespace {

constexpr wchar_t lowerLimitId[] = L"13191";
constexpr wchar_t upperLimitId[] = L"13192";
constexpr wchar_t throttleId[] = L"13190";
constexpr wchar_t speedId[] = L"101000";
constexpr LONG firstCommand = 20;
constexpr LONG step = 5;
constexpr LONG lowestSpeed = 1400;
constexpr LONG highestSpeed = 1600;
constexpr DWORD settling = 5000; // ms

} // namespace

void CThrottleAdjuster::ExecutePersistent() {
    try {
        Adjust();
    } catch (...) {
        std::ignore = ChooseTransition(L"failTransition");
    }
}

void CThrottleAdjuster::Adjust() {
    CCheckedResult result;
    const LONG lower = ReadParameterAsLongOrZero(CComBSTR(lowerLimitId));
    const LONG upper = ReadParameterAsLongOrZero(CComBSTR(upperLimitId));
    if (lower > firstCommand || upper < firstCommand) {
        result = ChooseTransition(L"failTransition");
        return;
    }
    LONG command = firstCommand;
    LONG speed = 0; // below the band, until a reading succeeds
    for (bool done = false; !done;) {
        result = SetParameter(CComBSTR(throttleId), CComVariant(command));
        if (m_stopEvent.Wait(settling) != WAIT_TIMEOUT)
            return;
        const ECMParameter2 engine(m_threadService.Get(), m_parameterService.Get());
        std::ignore = engine.ReadLong(speedId, speed);
        if (speed < lowestSpeed)
            command += step;
        else if (speed > highestSpeed)
            command -= step;
        else
            done = true;
        if (command > upper || command < lower) {
            result = ChooseTransition(L"failTransition");
            return;
        }
    }
    result = ChooseTransition(L"successTransition");
}

} // namespace vant
