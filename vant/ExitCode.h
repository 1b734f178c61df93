#pragma once

#include <stdexcept>
#include <string>

namespace vant::program {

/// How the program ends.
enum class ExitCode { Passed = 0, Failed = 1, WrongInput = 2, Broken = 3, Error = 4, Aborted = 130 };

/// Ends the program with an exit code and a message to standard error.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    ExitCode Code() const noexcept { return m_code; }

private:
    ExitCode m_code;
};

} // namespace vant::program
