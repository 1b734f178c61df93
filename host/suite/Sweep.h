#pragma once

#include "host/suite/TestCase.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vant::host {

/// What a sweep gives different values.
struct SweptValue {
    enum class Kind { Seed, Parameter, Data };

    Kind kind = Kind::Seed;
    std::string name; ///< Of the parameter or the entry.
    Position position;
    std::vector<Value> values{}; ///< Not empty.
};

/// The values with which a case is run, in combination.
struct Sweep {
    std::vector<SweptValue> swept{};
    bool pairs = false; ///< Not all combinations, but every two values together at least once.
};

/// One table of a test file stands for so many cases at most.
inline constexpr std::size_t mostSweptCases = 10'000;

/// Whether a sweep is larger than that.
bool IsTooLarge(const Sweep& sweep);

/// The cases that a case with a sweep stands for, named "NAME [VALUE NAME=VALUE ...]".
std::vector<TestCase> Expand(const TestCase& pattern, const Sweep& sweep);

} // namespace vant::host
