#pragma once

#include "tests/support/TestHost.h"

#include <utility>

namespace vant::test {

/// Gives the parameters that the adjusters use values with which each of them is done after one step.
inline void SetEngineAtTarget(TestHost& host) {
    for (const auto& [id, value] : {std::pair(L"101000", 1500),
                                    {L"13191", 0},
                                    {L"13192", 100},
                                    {L"13190", 0},
                                    {L"110142", 0},
                                    {L"199236", 8},
                                    {L"110143", 10},
                                    {L"110145", 42},
                                    {L"14531", 40}})
        host.parameters[id].value = CComVariant(LONG{value});
}

} // namespace vant::test
