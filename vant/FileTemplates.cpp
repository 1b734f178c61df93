#include "vant/FileTemplates.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vant::program {

namespace {

constexpr const char* procedureText =
    R"toml(# Opens the throttle, waits until the engine has settled, and measures its speed.
#
#     vant check --strict <FILE>
#     vant run <FILE> --virtual

name    = "<NAME>"
start   = "open"
finally = ["close"] # These commands run however the procedure ends.

# The data store at the beginning. Values that commands exchange are texts.
[data]
opening = "35"

# What the run must measure. Without the limits, the measurement must only be made.
[measurements.speed]
data    = "speed"
units   = "1/min"
atLeast = 1400
atMost  = 1600

# `vant classes` lists the classes and their properties.
[commands.open]
class      = "ParameterWriter"
properties = { parameterID = "13190", dsValue = "opening" }

[commands.sample]
class      = "ParameterSampler"
properties = { parameterID = "101000", period = "100", numSamples = "10", dsTarget = "speed" }

[commands.close]
class      = "ParameterWriter"
properties = { parameterID = "13190", value = "0" }

# A step runs its commands, waits, and leads to the next step.
[steps.open]
run   = ["open"]
delay = "5s"
next  = "measure"

# The sampler runs on after it has started; `wait` keeps the step until it has ended.
[steps.measure]
run     = ["sample"]
wait    = "end"
timeout = "10s"
next    = "done"

[steps.done]
end = "passed"

# The simulated engine. `engine = "FILE"` above the first table takes one from a file instead.
[engine.parameters."13190"]
name  = "Throttle"
value = 0
units = "percent"
min   = 0
max   = 100

# 600 1/min and 25 1/min for each percent of the throttle, reached with a time constant of 0.8 s.
[engine.parameters."101000"]
name      = "Engine speed"
value     = 600
units     = "rpm"
behaviour = { follows = "13190", gain = 25, offset = 600, lag = 0.8, noise = 8 }

[engine.units]
percent = "%"
rpm     = "1/min"
)toml";

constexpr const char* engineText =
    R"toml(# An engine whose speed follows the throttle. It warms up, and overspeed sets a fault.
#
#     vant engine <FILE> --for 20s --set 13190=90@2s --set 13190=0@8s --set 13999=1@14s
#     vant run PROCEDURE --engine <FILE>

connection = "1"
protocol   = 4
seed       = 1 # Of the noise: the same seed gives the same readings.

# A command of the procedure: without behaviour, only writes change the value.
[parameters."13190"]
name  = "Throttle"
value = 0
units = "percent"
min   = 0
max   = 100

# 600 1/min and 25 1/min for each percent of the throttle, reached with a time constant of 0.8 s.
[parameters."101000"]
name      = "Engine speed"
value     = 600
units     = "rpm"
behaviour = { follows = "13190", gain = 25, offset = 600, lag = 0.8, noise = 8 }

# Rises in a straight line, and then stays.
[parameters."110110"]
name      = "Coolant temperature"
value     = 20.0
units     = "celsius"
behaviour = { ramp = { to = 85, over = "10min" }, decimals = 1 }

[parameters."13999"]
name  = "Clear faults"
value = 0

# Two seconds above 2700 1/min set the fault; writing 1 to "Clear faults" clears it.
[[faults."199000"]]
fields    = [{ name = "199008", value = "190" }, { name = "199009", value = "Active" }]
when      = { parameter = "101000", above = 2700, for = "2s" }
clearedBy = { parameter = "13999", is = 1 }

[units]
percent = "%"
rpm     = "1/min"
celsius = "°C"
)toml";

constexpr const char* testText = R"toml(# Tests of <NAME>.toml.
#
#     vant test <FILE>
#
# What stands above the first case holds for all of them.

procedure = "<NAME>.toml"

# The procedure passes, and puts back every parameter that it writes.
[[case]]
name     = "as it is"
expected = { verdict = "passed", left = {} }

# A case can change the data and the engine at the beginning, and expect more of the run:

# [[case]]
# name       = "throttle too far open"
# data       = { opening = "80" }
# parameters = { 13190 = 10 }
# expected   = { verdict = "failed", ending = "done", measurements = { speed = { above = 1600 } } }

# A case with a sweep stands for many, here with different noise:

# [[case]]
# name  = "any noise"
# sweep = { seed = { from = 1, to = 20 } }
)toml";

const char* TemplateOf(FileKind kind) {
    switch (kind) {
    case FileKind::Procedure:
        return procedureText;
    case FileKind::Engine:
        return engineText;
    case FileKind::Test:
        break;
    }
    return testText;
}

void ReplaceAll(std::string& text, const std::string& mark, const std::string& replacement) {
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += replacement.size())
        text.replace(at, mark.size(), replacement);
}

} // namespace

std::string WordOfCommandLine(const std::string& text) {
    const bool isPlain = std::none_of(text.begin(), text.end(), [](char letter) {
        return std::string_view(" !#$%&'()*;<=>?[]^`{|}~").find(letter) != std::string_view::npos;
    });
    return isPlain ? text : '"' + text + '"';
}

std::string EndingOf(FileKind kind) {
    return kind == FileKind::Test ? ".test.toml" : ".toml";
}

std::string NewFileText(FileKind kind, const std::string& name) {
    std::string text = TemplateOf(kind);
    ReplaceAll(text, "<FILE>", WordOfCommandLine(name + EndingOf(kind)));
    ReplaceAll(text, "<NAME>", name);
    return text;
}

} // namespace vant::program
