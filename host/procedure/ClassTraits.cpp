#include "host/procedure/ClassTraits.h"

#include <algorithm>

namespace vant::host {

namespace {

constexpr ClassTraits allTraits[] = {
    {.className = "Calculator", .onlyStores = true},
    {.className = "CommandTerminator"},
    {.className = "CompositeCommand"},
    {.className = "DataStoreWriter", .onlyStores = true},
    {.className = "DiagnosticTestInstruction"},
    {.className = "EGRValvePositionAdjuster",
     .takesTime = true,
     .actuates = true,
     .parameters = {"110143", "110145", "14531"}},
    {.className = "ErrorDisplayer"},
    {.className = "FaultArrayChecker"},
    {.className = "HelpDisplayer"},
    {.className = "MessageDisplayer", .takesTime = true},
    {.className = "MonitorUpdater", .runsOn = true, .ends = false},
    {.className = "ParameterLoader", .onlyStores = true},
    {.className = "ParameterSampler", .runsOn = true, .onlyStores = true},
    {.className = "ParameterWriter", .actuates = true},
    {.className = "PropertySetter"},
    {.className = "SampledThrottleAdjuster",
     .takesTime = true,
     .actuates = true,
     .parameters = {"101000", "110142", "199236"}},
    {.className = "StartConditionChecker"},
    {.className = "StopConditionMonitor", .runsOn = true, .guards = true},
    {.className = "StringFormatter", .onlyStores = true},
    {.className = "ThrottleAdjuster",
     .runsOn = true,
     .actuates = true,
     .parameters = {"101000", "13190", "13191", "13192"}},
    {.className = "Timer", .runsOn = true},
};

} // namespace

std::span<const ClassTraits> AllClassTraits() {
    return allTraits;
}

const ClassTraits& TraitsOf(std::string_view className) {
    static constexpr ClassTraits none{};
    const auto found = std::ranges::lower_bound(allTraits, className, {}, &ClassTraits::className);
    return found != std::end(allTraits) && found->className == className ? *found : none;
}

} // namespace vant::host
