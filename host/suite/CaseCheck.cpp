#include "host/suite/CaseCheck.h"

#include "host/procedure/ProcedureNames.h"
#include "host/suite/CaseSetup.h"
#include "host/text/Printable.h"

#include <cmath>

namespace vant::host {

namespace {

/// Visits the procedure and those that it runs.
template <class Visit>
void ForEachProcedure(const LoadedProcedure& loaded, Visit visit) {
    visit(loaded.procedure);
    for (const CalledProcedure& each : loaded.called)
        visit(*each.procedure);
}

std::set<std::string> StepsOf(const LoadedProcedure& loaded) {
    std::set<std::string> steps;
    ForEachProcedure(loaded, [&steps](const Procedure& procedure) {
        for (const auto& [id, step] : procedure.steps)
            steps.insert(id);
    });
    return steps;
}

} // namespace

void CaseCheck::Error(const Position& position, const std::string& message) {
    const Diagnostic mistake{position, Severity::Error, message};
    if (m_said.insert(mistake.Text("")).second)
        m_found.Error(position, message);
}

template <class Names>
void CaseCheck::CheckName(const std::string& what, const std::string& name, const Position& position,
                          const Names& known) {
    if (!known.contains(name))
        Error(position, "there is no " + what + ' ' + Quoted(name) + m_found.Suggest(name, known));
}

void CaseCheck::Check(const TestCase& checked, const LoadedProcedure& loaded) {
    CheckData(checked, loaded.procedure);
    CheckParameters(checked, loaded.procedure);
    CheckAnswers(checked, loaded);
    CheckExpectation(checked.expected, loaded);
    for (const FaultExcuse& each : checked.mayPass)
        CheckExcuse(each, loaded);
}

void CaseCheck::CheckFinite(const std::string& name, const GivenValue& given) {
    if (const auto* const real = std::get_if<double>(&given.value); real && !std::isfinite(*real))
        Error(given.position, Quoted(name) + " must be a finite number");
}

void CaseCheck::CheckData(const TestCase& checked, const Procedure& procedure) {
    for (const auto& [name, given] : checked.data) {
        CheckName("entry in 'data' of the procedure,", name, given.position, procedure.data);
        CheckFinite(name, given);
    }
}

void CaseCheck::CheckParameters(const TestCase& checked, const Procedure& procedure) {
    if (!procedure.engine) {
        if (!checked.parameters.empty())
            Error(checked.parameters.begin()->second.position,
                  "the procedure has no engine whose parameters could be given");
        return;
    }
    const auto& parameters = procedure.engine->parameters;
    for (const auto& [id, given] : checked.parameters) {
        CheckName("parameter", id, given.position, parameters);
        CheckFinite(id, given);
        if (const auto found = parameters.find(id); found != parameters.end())
            CheckParameter(id, given, found->second);
    }
}

void CaseCheck::CheckParameter(const std::string& id, const GivenValue& given,
                               const EngineParameter& parameter) {
    const auto value = AsValueOf(parameter, given.value);
    if (!value) {
        Error(given.position,
              "the value of parameter " + Quoted(id) +
                  " must be of the same type as in the engine: " + TypeNameOf(parameter.value));
        return;
    }
    const auto number = NumberIn(*value);
    if (number &&
        ((parameter.min && *number < *parameter.min) || (parameter.max && *number > *parameter.max)))
        Error(given.position, "the value lies outside 'min' and 'max' of parameter " + Quoted(id));
}

void CaseCheck::CheckAnswers(const TestCase& checked, const LoadedProcedure& loaded) {
    for (const ReadyAnswer& each : checked.answers) {
        if (!each.step.empty())
            CheckName("step", each.step, each.stepPosition, StepsOf(loaded));
    }
}

void CaseCheck::CheckExcuse(const FaultExcuse& excuse, const LoadedProcedure& loaded) {
    std::set<std::string> commands;
    ForEachProcedure(loaded, [&commands](const Procedure& procedure) {
        for (const auto& [id, command] : procedure.commands)
            commands.insert(id);
    });
    if (!excuse.command.text.empty())
        CheckName("command", excuse.command.text, excuse.command.position, commands);
    if (!excuse.step.text.empty() && excuse.step.text != "finally")
        CheckName("step", excuse.step.text, excuse.step.position, StepsOf(loaded));
    for (const Located& id : {excuse.lost, excuse.refused}) {
        if (!id.text.empty() && loaded.procedure.engine)
            CheckName("parameter", id.text, id.position, loaded.procedure.engine->parameters);
        else if (!id.text.empty())
            Error(id.position, "the procedure has no engine");
    }
}

void CaseCheck::CheckExpectation(const Expectation& expected, const LoadedProcedure& loaded) {
    const Procedure& procedure = loaded.procedure;
    if (expected.ending)
        CheckName("step", expected.ending->text, expected.ending->position, procedure.steps);
    for (const Located& step : expected.path.value_or(std::vector<Located>()))
        CheckName("step", step.text, step.position, procedure.steps);
    for (const auto& [name, measurement] : expected.measurements)
        CheckName("measurement", name, measurement.value.position, procedure.measurements);
    if (expected.left) {
        for (const auto& [id, value] : *expected.left) {
            if (procedure.engine)
                CheckName("parameter", id, value.position, procedure.engine->parameters);
            else
                Error(value.position, "the procedure has no engine");
        }
    }
    CheckMayFail(expected, loaded);
}

void CaseCheck::CheckMayFail(const Expectation& expected, const LoadedProcedure& loaded) {
    std::set<std::string> known;
    ForEachProcedure(loaded, [&known](const Procedure& procedure) {
        for (const auto& [id, command] : procedure.commands)
            known.insert(id);
        for (const auto& [id, step] : procedure.steps) {
            if (step.procedure)
                known.insert(step.procedure->file.text);
        }
    });
    for (const Located& each : expected.mayFail) {
        if (!IsOperation(each.text))
            CheckName("operation or command", each.text, each.position, known);
    }
}

} // namespace vant::host
