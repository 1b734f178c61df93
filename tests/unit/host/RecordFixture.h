#pragma once

#include "host/record/CallScope.h"
#include "host/record/Vocabulary.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// Makes the records of a run and passes them to what is tested.
class RecordFixture : public ::testing::Test {
protected:
    void Event(const char* operation, std::vector<Argument> arguments = {}, const char* command = "",
               std::optional<HRESULT> result = std::nullopt) {
        Make(service::Runner, operation, std::move(arguments), command, result);
    }
    void Call(const char* service, const char* operation, std::vector<Argument> arguments,
              HRESULT result = S_OK, const char* command = "work") {
        Make(service, operation, std::move(arguments), command, result);
    }

    void BeginProcedure(const char* name) { Event(event::ProcedureStarted, {{argument::name, name}}); }
    void EndProcedure(const char* verdict) {
        Event(event::ProcedureEnded, {{argument::verdict, verdict}, {argument::reason, "because"}});
    }
    void EnterStep(const char* step) { Event(event::StepEntered, {{argument::step, step}}); }
    void Follow(const char* to) { Event(event::TransitionFollowed, {{argument::to, to}}); }
    void EndCommand(const char* command, HRESULT result = S_OK) {
        Event(
            event::CommandEnded,
            {{argument::className, "Calculator"}, {argument::caller, nullptr}, {argument::phase, "execute"}},
            command, result);
    }
    void DescribeSpeed() {
        Event(event::ParameterGiven,
              {{argument::id, "7"}, {argument::name, "Speed"}, {argument::units, "1/min"}});
    }
    void Show(const char* text) {
        Call(service::PresentationService, operation::ShowInstruction, {{argument::text, text}});
    }
    /// Conditions that are not met. Without a command it is the step that evaluates them.
    void Evaluate(double speed, const char* command) {
        Call(service::ConditionSet, operation::Evaluate,
             {{argument::name, "fast"},
              {argument::failed, "parameter 7 atLeast 1500"},
              {argument::parameter, "7"},
              {argument::limits, "atLeast 1500"},
              {argument::value, speed},
              {argument::allMet, false}},
             S_OK, command);
    }
    void BeginThread(std::int64_t cookie, const char* command) {
        Call(service::ThreadService, operation::RegisterCallback,
             {{argument::threadName, "Worker"}, {argument::cookie, cookie}}, S_OK, command);
    }

    std::string thread = mainThread;
    std::int64_t time = 0;

private:
    virtual void Take(const Record& record) = 0;

    void Make(const char* service, const char* operation, std::vector<Argument> arguments,
              const char* command, std::optional<HRESULT> result) {
        Take({.time = time,
              .thread = thread,
              .command = command,
              .service = service,
              .operation = operation,
              .arguments = std::move(arguments),
              .result = result});
    }
};

} // namespace vant::host
