#pragma once

#include "host/procedure/Loading.h"
#include "host/suite/TestCase.h"

#include <set>
#include <string>

namespace vant::host {

/// Compares what the cases of a test file name with the procedures that they run. A mistake that several
/// cases share, because the file gives it for all of them, is reported once.
class CaseCheck {
public:
    explicit CaseCheck(Diagnostics& found) : m_found(found) {}

    /// `loaded`, which has no errors, is the procedure of the case, on its engine.
    void Check(const TestCase& checked, const LoadedProcedure& loaded);

    /// Adds a mistake unless it is known.
    void Error(const Position& position, const std::string& message);

private:
    void CheckData(const TestCase& checked, const Procedure& procedure);
    void CheckParameters(const TestCase& checked, const Procedure& procedure);
    void CheckParameter(const std::string& id, const GivenValue& given, const EngineParameter& parameter);
    void CheckAnswers(const TestCase& checked, const LoadedProcedure& loaded);
    void CheckExpectation(const Expectation& expected, const LoadedProcedure& loaded);
    void CheckMayFail(const Expectation& expected, const LoadedProcedure& loaded);
    void CheckExcuse(const FaultExcuse& excuse, const LoadedProcedure& loaded);
    void CheckFinite(const std::string& name, const GivenValue& given);

    /// Adds a mistake if a name is missing in a map or a list of names.
    template <class Names>
    void CheckName(const std::string& what, const std::string& name, const Position& position,
                   const Names& known);

    Diagnostics& m_found;
    std::set<std::string> m_said;
};

} // namespace vant::host
