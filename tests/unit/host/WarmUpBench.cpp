#include "tests/unit/host/WarmUpBench.h"

namespace vant::host {

const std::string warmUpBench = R"(
name = 'n'
start = 's'
[data]
message = 'm'
limit = 5
gear = 'neutral'
[conditions.warm]
all = [{ parameter = 'temperature', atLeast = 80 }]
[conditions.cold]
all = [{ parameter = 'temperature', below = 30 }]
[conditions.lost]
all = [{ parameter = 'lost', atLeast = 80 }]
[engine.parameters.temperature]
name = 'Coolant'
value = 20
units = 'deg'
behaviour = { ramp = { to = 90, over = 70 } }
[engine.parameters.lost]
value = 90
fails = { from = 5 }
[engine.parameters.valve]
value = 0
max = 100
[commands.open]
class = 'ParameterWriter'
properties = { parameterID = 'valve', value = '35' }
[commands.close]
class = 'ParameterWriter'
properties = { parameterID = 'valve', value = '0' }
[commands.burst]
class = 'ParameterWriter'
properties = { parameterID = 'valve', value = '500' }
[commands.ask]
class = 'ParameterLoader'
properties = { parameterID = 'nothing', dsLocation = 'asked' }
[commands.load]
class = 'ParameterLoader'
properties = { parameterID = 'temperature', dsLocation = 'loaded' }
[commands.loadLost]
class = 'ParameterLoader'
properties = { parameterID = 'lost', dsLocation = 'loaded' }
[commands.wrong]
class = 'Calculator'
properties = { operation = 'add', sourceA = 'x', sourceB = '1', dsResult = 'sum' }
[commands.count]
class = 'Timer'
properties = { length = '9', dsBase = 'left' }
[commands.guard]
class = 'StopConditionMonitor'
properties = { dsSetID = 'lost', dsMessageID = 'reason', failTransitionID = 'tripped' }
[commands.stop]
class = 'StopConditionMonitor'
properties = { dsSetID = 'cold', dsMessageID = 'reason', failTransitionID = 'stop' }
[commands.check]
class = 'StartConditionChecker'
properties = { dsSetID = 'warm', validTransitionID = 'yes', invalidTransitionID = 'no' }
[steps.good]
end = 'passed'
[steps.bad]
end = 'failed'
)";

RunOutcome RunSteps(const std::string& steps, const std::string& top, const RunSettings& settings,
                    const RecordFilter& abortAt) {
    return RunProcedure(ProcedureOf(top + warmUpBench + steps), settings, abortAt);
}

} // namespace vant::host
