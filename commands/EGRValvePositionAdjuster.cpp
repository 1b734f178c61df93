#include "commands/EGRValvePositionAdjuster.h"

#include "ecm/ResultPolicy.h"

#include <cstdint>
#include <tuple>

namespace vant {

namespace {

constexpr wchar_t enablingId[] = L"110143";
constexpr wchar_t positionId[] = L"110145";
constexpr wchar_t targetId[] = L"14531";
constexpr LONG leastEnabling = 10;
constexpr LONG step = 5;
constexpr DWORD settling = 5000; // ms

/// Never below the target: a position that lies below is raised to it.
LONG StepDown(LONG position, LONG target) {
    return position > target + std::int64_t{step} ? position - step : target;
}

} // namespace

void CEGRValvePositionAdjuster::ExecuteCommand() {
    try {
        Walk();
    } catch (...) {
        std::ignore = ChooseTransition(L"failTransition");
    }
}

void CEGRValvePositionAdjuster::Walk() const {
    CCheckedResult result;
    bool walking = IsEnabled();
    while (walking) {
        OutputDebugStringW(L"onCycle::EGR::beign"); // the spelling is kept
        const LONG current = ReadParameterAsLongOrZero(CComBSTR(positionId));
        const LONG target = ReadParameterAsLongOrZero(CComBSTR(targetId));
        result = SetParameter(CComBSTR(positionId), CComVariant(StepDown(current, target)));
        Sleep(settling);
        const bool enabled = IsEnabled();
        // What the engine reports counts, not what was written.
        const LONG reported = ReadParameterAsLongOrZero(CComBSTR(positionId));
        walking = ReadParameterAsLongOrZero(CComBSTR(targetId)) != reported && enabled;
    }
}

bool CEGRValvePositionAdjuster::IsEnabled() const {
    return ReadParameterAsLongOrZero(CComBSTR(enablingId)) >= leastEnabling;
}

} // namespace vant
