#pragma once

#include "host/record/Json.h"
#include "host/suite/TestCase.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vant::host {

/// What is to stand in `expected` of a case. What is missing stays as it is.
struct NewExpectation {
    std::optional<std::string> verdict{};
    std::optional<std::string> ending{};
    std::optional<std::vector<std::string>> path{};

    bool IsEmpty() const noexcept { return !verdict && !ending && !path; }
};

/// What a case has to expect to fit the result of its run: all three if its file has no expectation for it
/// and it is not one of a sweep, else what differs.
NewExpectation NeededFor(const TestCase& tested, const Json& result);

/// The expectation of a case is written in a form that cannot be changed.
class UpdateError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The text of a test file with a new expectation of one of its cases. Everything else stays as it is, with
/// comments and order. Throws UpdateError for a case with a sweep, for one that is written inside a list
/// instead of under [[case]], and if the new text would not be read as wanted.
std::string UpdateExpectation(const std::string& toml, const TestCase& tested, const NewExpectation& wanted);

} // namespace vant::host
