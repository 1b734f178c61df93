#include "commands/SampledThrottleAdjuster.h"

#include "ecm/ECMParameter2.h"

#include <tuple>

namespace vant {

namespace {

constexpr wchar_t throttleId[] = L"110142";
constexpr wchar_t speedId[] = L"101000";
constexpr wchar_t statusId[] = L"199236";
constexpr LONG firstCommand = 20;
constexpr LONG step = 5;
constexpr LONG lowestSpeed = 1400;
constexpr LONG highestSpeed = 1600;
constexpr LONG requiredStatus = 8;
constexpr DWORD settling = 5000; // ms

} // namespace

void CSampledThrottleAdjuster::ExecuteCommand() {
    try {
        Adjust();
    } catch (...) {
        std::ignore = ChooseTransition(L"failTransition");
    }
}

void CSampledThrottleAdjuster::Adjust() const {
    CCheckedResult result;
    LONG speed = 0; // below the band, until a reading succeeds
    bool done = false;
    for (LONG command = firstCommand; !done;) {
        result = SetParameter(CComBSTR(throttleId), CComVariant(command));
        Sleep(settling);
        const ECMParameter2 engine(m_threadService.Get(), m_parameterService.Get());
        std::ignore = engine.ReadLong(speedId, speed);
        if (speed < lowestSpeed) {
            command += step;
        } else if (speed > highestSpeed) {
            command -= step;
        } else if (ReadParameterAsLongOrZero(CComBSTR(statusId)) == requiredStatus) {
            done = true;
        } else {
            std::ignore = ChooseTransition(L"failTransition");
            return;
        }
    }
    result = ChooseTransition(L"successTransition");
}

} // namespace vant
