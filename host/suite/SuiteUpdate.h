#pragma once

#include "host/record/Json.h"
#include "host/suite/TestCase.h"

#include <cstddef>
#include <map>
#include <string>

namespace vant::host {

/// Changes test files so that their cases expect what has come.
class SuiteUpdate {
public:
    /// Returns the case as its file will have it, with the verdict, ending and path of this result; as it is,
    /// if that needs no change or cannot be done. Throws InputError if the file cannot be read.
    TestCase Update(const TestCase& tested, const Json& result);

    /// Why cases could not be changed: one line for each, in the order of the files.
    std::string Refusals() const;

    /// Replaces the files that have changed. Returns how many cases were changed in each. Throws
    /// std::system_error; a file that cannot be replaced stays as it is.
    std::map<std::string, std::size_t> Write() const;

private:
    struct File {
        std::string text;
        std::size_t changes = 0;
        std::map<Position, std::string> refusals{};
    };

    File& Get(const std::string& name);

    std::map<std::string, File> m_files; ///< By name.
};

} // namespace vant::host
