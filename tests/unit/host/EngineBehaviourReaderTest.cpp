#include "host/procedure/EngineReader.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace vant::host {

namespace {

/// All that is said about an engine's text, line by line.
std::string Said(std::string_view toml) {
    Diagnostics found;
    ReadEngine(toml, found);
    std::string result;
    for (const Diagnostic& each : found.Sorted())
        result += each.Text("e") + '\n';
    return result;
}

/// The same about a parameter whose value is `value` and whose behaviour begins in column 15 of line 3.
std::string SaidOf(const std::string& value, const std::string& behaviour) {
    return Said("[parameters.a]\nvalue = " + value + "\nbehaviour = { " + behaviour + " }\n");
}

TEST(EngineBehaviourReader, WholeBehaviour_IsReadAsItStands) {
    Diagnostics found;
    const EngineDescription read = ReadEngine(R"(seed = 42
[parameters.x]
value = 1
[parameters.a]
value = 600.5
fails = { from = 1.5, until = 2, read = 9 }
[parameters.a.behaviour]
follows = ["x", "y"]
gain = 2
offset = -1.5
lag = 0.5
noise = 8
decimals = 1
loads = [{ at = 1.0004, by = -3 }, { at = 2, until = 3, by = 4 }]
[parameters.y]
value = 1
fails = { from = 3 }
behaviour.ramp = { from = 5, to = 6, at = 7, over = 0.25 }
[parameters.z]
value = 1
behaviour = { towards = 3, rate = 2 }
)",
                                              found);
    EXPECT_FALSE(found.HasErrors());
    EXPECT_EQ(read.seed, 42U);
    const EngineParameter& a = read.parameters.at("a");
    ASSERT_TRUE(a.behaviour);
    EXPECT_EQ(a.behaviour->follows, (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(a.behaviour->gain, 2.0);
    EXPECT_EQ(a.behaviour->offset, -1.5);
    EXPECT_EQ(a.behaviour->lag, 0.5);
    EXPECT_EQ(a.behaviour->rate, 0.0);
    EXPECT_EQ(a.behaviour->noise, 8.0);
    EXPECT_EQ(a.behaviour->decimals, 1);
    ASSERT_EQ(a.behaviour->loads.size(), 3U);
    EXPECT_EQ(a.behaviour->loads[0].at, 1000);
    EXPECT_EQ(a.behaviour->loads[0].by, -3.0);
    EXPECT_EQ(a.behaviour->loads[2].at, 3000);
    EXPECT_EQ(a.behaviour->loads[2].by, -4.0);
    ASSERT_TRUE(a.outage);
    EXPECT_EQ(a.outage->from, 1500);
    EXPECT_EQ(a.outage->until, 2000);
    EXPECT_EQ(a.failingRead, 9);
    const EngineParameter& y = read.parameters.at("y");
    ASSERT_TRUE(y.behaviour && y.behaviour->ramp && y.outage);
    EXPECT_EQ(y.behaviour->ramp->from, 5.0);
    EXPECT_EQ(y.behaviour->ramp->to, 6.0);
    EXPECT_EQ(y.behaviour->ramp->at, 7000);
    EXPECT_EQ(y.behaviour->ramp->over, 250);
    EXPECT_EQ(y.outage->until, std::nullopt);
    EXPECT_EQ(read.parameters.at("z").behaviour->towards, 3.0);
    EXPECT_EQ(read.parameters.at("z").behaviour->rate, 2.0);
    EXPECT_FALSE(read.parameters.at("x").behaviour);
}

TEST(EngineBehaviourReader, TimesWithUnits_AreThoseInSeconds) {
    Diagnostics found;
    const EngineDescription read = ReadEngine(R"([parameters.ramp]
value = 1.0
fails = { from = "250ms", until = "1h" }
behaviour = { ramp = { to = 2, at = "5s", over = "10min" }, lag = "1500ms", loads = [
  { at = "0.5s", until = "1.5min", by = 1 }] }
[parameters.changes]
value = 1
behaviour.changes = [{ at = "2.5s", to = 2 }]
[parameters.sequence]
value = 1
behaviour = { sequence = [1, 2, 3], every = "20ms" }
)",
                                              found);
    EXPECT_EQ(found.Print("e"), "");
    const EngineParameter& ramp = read.parameters.at("ramp");
    EXPECT_EQ(ramp.outage->from, 250);
    EXPECT_EQ(ramp.outage->until, 3600000);
    EXPECT_EQ(ramp.behaviour->ramp->at, 5000);
    EXPECT_EQ(ramp.behaviour->ramp->over, 600000);
    EXPECT_EQ(ramp.behaviour->lag, 1.5);
    EXPECT_EQ(ramp.behaviour->loads[0].at, 500);
    EXPECT_EQ(ramp.behaviour->loads[1].at, 90000);
    EXPECT_EQ(read.parameters.at("changes").behaviour->changes[0].at, 2500);
    EXPECT_EQ(read.parameters.at("sequence").behaviour->changes[2].at, 40);
}

TEST(EngineBehaviourReader, WrongTimes_AreReported) {
    const std::string must = " must be a number of seconds, or a text such as '250ms', '5s', '10min' or "
                             "'1h', not ";
    EXPECT_EQ(SaidOf("1.0", "lag = '5'"), "e:3:21: error: 'lag'" + must + "'5'\n");
    EXPECT_EQ(SaidOf("1.0", "lag = '5 s'"), "e:3:21: error: 'lag'" + must + "'5 s'\n");
    EXPECT_EQ(SaidOf("1.0", "lag = true"), "e:3:21: error: 'lag'" + must + "true or false\n");
    EXPECT_EQ(SaidOf("1.0", "lag = '0s'"), "e:3:21: error: 'lag' must be above 0\n");
    EXPECT_EQ(SaidOf("1", "sequence = [1], every = '-1s'"), "e:3:39: error: 'every'" + must + "'-1s'\n");
    EXPECT_EQ(SaidOf("1", "sequence = [1], every = nan"),
              "e:3:39: error: 'every' must be a number, not nan or an infinite one\n");
    EXPECT_EQ(SaidOf("1", "sequence = [1], every = 1e10"),
              "e:3:39: error: 'every' must lie between 0 and 1000000000 seconds\n");
}

TEST(EngineBehaviourReader, WrongSeed_IsReported) {
    EXPECT_EQ(Said("seed = -1"), "e:1:8: error: 'seed' must be a whole number from 0\n");
    EXPECT_EQ(Said("seed = 1.5"), "e:1:8: error: 'seed' must be a whole number from 0\n");
}

TEST(EngineBehaviourReader, UnknownKeys_AreReportedWithSuggestions) {
    EXPECT_EQ(SaidOf("1", "folows = 'x', noise = 1"),
              "e:3:15: error: a behaviour has no key 'folows' (did you mean 'follows'?)\n");
    EXPECT_EQ(SaidOf("1", "ramp = { to = 1, ower = 1, over = 2 }"),
              "e:3:32: error: a ramp has no key 'ower' (did you mean 'over'?)\n");
    EXPECT_EQ(SaidOf("1", "changes = [{ At = 1, at = 1, to = 2 }]"),
              "e:3:28: error: a change has no key 'At' (did you mean 'at'?)\n");
    EXPECT_EQ(SaidOf("1", "loads = [{ at = 1, by = 2, untill = 3 }]"),
              "e:3:42: error: a load has no key 'untill' (did you mean 'until'?)\n");
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nfails = { reed = 1, read = 2 }\n"),
              "e:3:11: error: a failure has no key 'reed' (did you mean 'read'?)\n");
}

TEST(EngineBehaviourReader, ReferenceToNothing_IsReportedWithASuggestion) {
    EXPECT_EQ(Said("[parameters.13190]\nvalue = 1\n[parameters.a]\nvalue = 1\nbehaviour.follows = '13191'\n"),
              "e:5:21: error: there is no parameter '13191' (did you mean '13190'?)\n");
    EXPECT_EQ(Said("[parameters.13190]\nvalue = 1\n[parameters.a]\nvalue = 1\n"
                   "behaviour.follows = ['13190', 'x', 3]\n"),
              "e:5:31: error: there is no parameter 'x'\n"
              "e:5:36: error: the id of a parameter must be a string, not a number: write it in quotes\n");
}

TEST(EngineBehaviourReader, ReferenceThatNothingCanFollow_IsReported) {
    EXPECT_EQ(Said("[parameters.b]\nvalue = '1'\n[parameters.a]\nvalue = 1\nbehaviour.follows = 'b'\n"),
              "e:5:21: error: the value of 'b' is not a number, so nothing can follow it\n");
    EXPECT_EQ(Said("[parameters.b]\nvalue = 1\nbehaviour.sequence = [1]\n[parameters.a]\nvalue = 1\n"
                   "behaviour.follows = 'b'\n"),
              "e:6:21: error: 'b' changes when it is read, so nothing can follow it: add 'every'\n");
    EXPECT_EQ(SaidOf("1", "follows = 'a'"),
              "e:3:25: error: a parameter without a source follows what is written to it: leave 'follows' "
              "out\n");
    EXPECT_EQ(SaidOf("1", "follows = []"),
              "e:3:25: error: 'follows' is empty: name a parameter, or leave the key out\n");
}

TEST(EngineBehaviourReader, Circle_IsReportedAtEachOfItsMembers) {
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nbehaviour.follows = 'b'\n"
                   "[parameters.b]\nvalue = 1\nbehaviour = { follows = 'c', lag = 1 }\n"
                   "[parameters.c]\nvalue = 1\nbehaviour.follows = ['d', 'a']\n"
                   "[parameters.d]\nvalue = 1\n"
                   "[parameters.e]\nvalue = 1\nbehaviour.follows = 'a'\n"),
              "e:3:21: error: 'a' follows itself through 'b'\n"
              "e:6:25: error: 'b' follows itself through 'c'\n"
              "e:9:27: error: 'c' follows itself through 'a'\n");
}

TEST(EngineBehaviourReader, Sum_IsReadAsItStands) {
    Diagnostics found;
    const EngineDescription read = ReadEngine("[parameters.x]\nvalue = 1\n[parameters.a]\nvalue = 1\n"
                                              "behaviour.sum = [{ of = 'x', gain = 25 }, "
                                              "{ of = 'x', gain = -3, offset = 5 }, { of = 'x' }]\n",
                                              found);
    EXPECT_EQ(found.Print("e"), "");
    const std::vector<Term>& sum = read.parameters.at("a").behaviour->sum;
    ASSERT_EQ(sum.size(), 3U);
    EXPECT_EQ(sum[0].of, "x");
    EXPECT_EQ(sum[0].gain, 25.0);
    EXPECT_EQ(sum[0].offset, 0.0);
    EXPECT_EQ(sum[1].gain, -3.0);
    EXPECT_EQ(sum[1].offset, 5.0);
    EXPECT_EQ(sum[2].gain, 1.0);
}

TEST(EngineBehaviourReader, WrongSums_AreReported) {
    EXPECT_EQ(SaidOf("1", "sum = { of = 'x' }"),
              "e:3:21: error: 'sum' must be a list of inputs, not a table\n");
    EXPECT_EQ(SaidOf("1", "sum = []"), "e:3:21: error: 'sum' is empty: add an input, or leave the key out\n");
    EXPECT_EQ(SaidOf("1", "sum = ['x', { gian = 1 }]"),
              "e:3:22: error: an input of a sum must be a table, not a string\n"
              "e:3:27: error: 'of' is missing\n"
              "e:3:29: error: an input of a sum has no key 'gian' (did you mean 'gain'?)\n");
    EXPECT_EQ(SaidOf("1", "sum = [{ of = 1, gain = '2', offset = nan }]"),
              "e:3:29: error: 'of' must be a string, not a number: write it in quotes\n"
              "e:3:39: error: 'gain' must be a number, not a string\n"
              "e:3:53: error: 'offset' must be a number, not nan or an infinite one\n");
    EXPECT_EQ(SaidOf("1", "sum = [{ of = 'x' }, { of = 'a' }]"),
              "e:3:29: error: there is no parameter 'x'\n"
              "e:3:43: error: a parameter cannot follow itself\n");
    EXPECT_EQ(SaidOf("'x'", "sum = []"),
              "e:3:15: error: only a parameter whose value is a number has 'sum'\n"
              "e:3:21: error: 'sum' is empty: add an input, or leave the key out\n");
    EXPECT_EQ(SaidOf("1", "sum = [], follows = []"),
              "e:3:21: error: 'sum' is empty: add an input, or leave the key out\n"
              "e:3:25: error: 'follows' excludes 'sum': a behaviour has one source\n"
              "e:3:35: error: 'follows' is empty: name a parameter, or leave the key out\n");
}

TEST(EngineBehaviourReader, DelayThresholdAndStick_AreReadAsTheyStand) {
    Diagnostics found;
    const EngineDescription read = ReadEngine(R"([parameters.x]
value = 1
[parameters.a]
value = 0
behaviour = { threshold = { of = "x", on = 3000, off = 2800, high = 1, low = 0 }, delay = 0.4, stick = 5 }
[parameters.b]
value = "OFF"
behaviour.threshold = { of = "x", on = -1.5, off = 0, high = "ON", low = "OFF" }
[parameters.c]
value = 0
behaviour.delay = "10min"
)",
                                              found);
    EXPECT_EQ(found.Print("e"), "");
    const Behaviour& a = *read.parameters.at("a").behaviour;
    ASSERT_TRUE(a.threshold);
    EXPECT_EQ(a.threshold->of, "x");
    EXPECT_EQ(a.threshold->on, 3000.0);
    EXPECT_EQ(a.threshold->off, 2800.0);
    EXPECT_EQ(a.threshold->high, Value(std::int64_t{1}));
    EXPECT_EQ(a.threshold->low, Value(std::int64_t{0}));
    EXPECT_EQ(a.delay, 400);
    EXPECT_EQ(a.stick, 5.0);
    const Behaviour& b = *read.parameters.at("b").behaviour;
    ASSERT_TRUE(b.threshold);
    EXPECT_EQ(b.threshold->on, -1.5);
    EXPECT_EQ(b.threshold->high, Value("ON"));
    EXPECT_EQ(read.parameters.at("c").behaviour->delay, 600000);
}

TEST(EngineBehaviourReader, WrongThresholds_AreReported) {
    EXPECT_EQ(SaidOf("1", "threshold = 3"), "e:3:27: error: 'threshold' must be a table, not a number\n");
    EXPECT_EQ(SaidOf("1", "threshold = {}"), "e:3:27: error: 'of' is missing\n"
                                             "e:3:27: error: 'on' is missing\n"
                                             "e:3:27: error: 'off' is missing\n"
                                             "e:3:27: error: 'high' is missing\n"
                                             "e:3:27: error: 'low' is missing\n");
    EXPECT_EQ(SaidOf("1", "threshold = { of = 'b', on = 1, off = 1.0, high = 'x', low = true, hig = 1 }"),
              "e:3:34: error: there is no parameter 'b'\n"
              "e:3:53: error: 'off' must differ from 'on'\n"
              "e:3:65: error: 'high' must be of the same kind as the parameter's 'value', not a string\n"
              "e:3:76: error: 'low' must be of the same kind as the parameter's 'value', not true or false\n"
              "e:3:82: error: a threshold has no key 'hig' (did you mean 'high'?)\n");
    EXPECT_EQ(SaidOf("1", "threshold = { of = 'a', on = 1, off = 0, high = 1, low = 0 }"),
              "e:3:34: error: a parameter cannot follow itself\n");
    EXPECT_EQ(SaidOf("1", "threshold = { of = 'b', on = 1, off = 0, high = 1, low = 0 } }\n"
                          "[parameters.b]\nvalue = 1\nbehaviour = { follows = 'a'"),
              "e:3:34: error: 'a' follows itself through 'b'\n"
              "e:6:25: error: 'b' follows itself through 'a'\n");
    EXPECT_EQ(SaidOf("'x'", "threshold = { of = 'b', on = 1, off = 0, high = '1', low = '0' } }\n"
                            "[parameters.b]\nvalue = 'y'\nbehaviour = { delay = 1, stick = 1"),
              "e:3:34: error: the value of 'b' is not a number, so nothing can follow it\n"
              "e:6:15: error: only a parameter whose value is a number has 'delay'\n"
              "e:6:26: error: only a parameter whose value is a number has 'stick'\n");
}

TEST(EngineBehaviourReader, WrongDelaysAndSticks_AreReported) {
    EXPECT_EQ(SaidOf("1", "delay = 0"), "e:3:23: error: 'delay' must be above 0 and at most 600 seconds\n");
    EXPECT_EQ(SaidOf("1", "delay = '11min'"),
              "e:3:23: error: 'delay' must be above 0 and at most 600 seconds\n");
    EXPECT_EQ(SaidOf("1", "delay = -1"),
              "e:3:23: error: 'delay' must lie between 0 and 1000000000 seconds\n");
    EXPECT_EQ(SaidOf("1", "stick = 0"), "e:3:23: error: 'stick' must be above 0\n");
    EXPECT_EQ(SaidOf("1", "sequence = [1], delay = 1, stick = 1"),
              "e:3:31: error: 'delay' needs a sequence in time: add 'every'\n"
              "e:3:42: error: 'stick' needs a sequence in time: add 'every'\n");
}

TEST(EngineBehaviourReader, CircleThroughASum_IsReported) {
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nbehaviour.sum = [{ of = 'c' }, { of = 'b' }]\n"
                   "[parameters.b]\nvalue = 1\nbehaviour.follows = 'a'\n"
                   "[parameters.c]\nvalue = 1\n"),
              "e:3:39: error: 'a' follows itself through 'b'\n"
              "e:6:21: error: 'b' follows itself through 'a'\n");
}

TEST(EngineBehaviourReader, SecondSource_IsReported) {
    EXPECT_EQ(SaidOf("1", "towards = 2, lag = 1, ramp = { to = 1, over = 1 }, sequence = [1], every = 1"),
              "e:3:37: error: 'ramp' excludes 'towards': a behaviour has one source\n"
              "e:3:66: error: 'sequence' excludes 'towards': a behaviour has one source\n");
}

TEST(EngineBehaviourReader, KeyWithoutItsCompanion_IsReported) {
    EXPECT_EQ(SaidOf("1", "gain = 2, offset = 1, every = 1"), "e:3:15: error: 'gain' needs 'follows'\n"
                                                              "e:3:25: error: 'offset' needs 'follows'\n"
                                                              "e:3:37: error: 'every' needs 'sequence'\n");
    EXPECT_EQ(SaidOf("1", "towards = 2"), "e:3:15: error: 'towards' needs 'lag' or 'rate'\n");
    EXPECT_EQ(SaidOf("1", "lag = 2, rate = 1"), "e:3:24: error: 'lag' and 'rate' exclude each other\n");
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nbehaviour = {}\n"),
              "e:3:13: error: 'behaviour' is empty: say what the parameter does, or leave it out\n");
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\ntext = 'x'\nbehaviour.noise = 1\n"),
              "e:3:1: error: a parameter with a 'behaviour' has no text of its own\n");
}

TEST(EngineBehaviourReader, NumbersThatCannotBe_AreReported) {
    EXPECT_EQ(SaidOf("1.0", "lag = 0"), "e:3:21: error: 'lag' must be above 0\n");
    EXPECT_EQ(SaidOf("1.0", "rate = -1"), "e:3:22: error: 'rate' must be above 0\n");
    EXPECT_EQ(SaidOf("1.0", "noise = '8'"), "e:3:23: error: 'noise' must be a number, not a string\n");
    EXPECT_EQ(SaidOf("1.0", "noise = inf"),
              "e:3:23: error: 'noise' must be a number, not nan or an infinite one\n");
    EXPECT_EQ(SaidOf("1.0", "decimals = 10"),
              "e:3:26: error: 'decimals' must be a whole number from 0 to 9\n");
    EXPECT_EQ(SaidOf("1.0", "decimals = 1.0"),
              "e:3:26: error: 'decimals' must be a whole number from 0 to 9\n");
    EXPECT_EQ(SaidOf("1", "decimals = 1"),
              "e:3:26: error: a parameter whose value is a whole number has no decimals\n");
}

TEST(EngineBehaviourReader, TextWithWhatOnlyNumbersHave_IsReported) {
    EXPECT_EQ(SaidOf("'x'", "noise = 1, lag = 1"),
              "e:3:15: error: only a parameter whose value is a number has 'noise'\n"
              "e:3:26: error: only a parameter whose value is a number has 'lag'\n");
    EXPECT_EQ(SaidOf("true", "ramp = { to = 1, over = 1 }"),
              "e:3:15: error: only a parameter whose value is a number has 'ramp'\n");
    EXPECT_EQ(SaidOf("1", "sequence = [1], lag = 1, noise = 1"),
              "e:3:31: error: 'lag' needs a sequence in time: add 'every'\n");
}

TEST(EngineBehaviourReader, WrongRamps_AreReported) {
    EXPECT_EQ(SaidOf("1", "ramp = 1"), "e:3:22: error: 'ramp' must be a table, not a number\n");
    EXPECT_EQ(SaidOf("1", "ramp = { at = -1 }"),
              "e:3:22: error: 'to' is missing\n"
              "e:3:22: error: 'over' is missing\n"
              "e:3:29: error: 'at' must lie between 0 and 1000000000 seconds\n");
    EXPECT_EQ(SaidOf("1", "ramp = { to = 1, over = 0 }"), "e:3:39: error: 'over' must be above 0 seconds\n");
}

TEST(EngineBehaviourReader, WrongChanges_AreReported) {
    EXPECT_EQ(SaidOf("1", "changes = 1"),
              "e:3:25: error: 'changes' must be a list of changes, not a number\n");
    EXPECT_EQ(SaidOf("1", "changes = []"),
              "e:3:25: error: 'changes' is empty: add a change, or leave the key out\n");
    EXPECT_EQ(SaidOf("1", "changes = [1, {}]"), "e:3:26: error: a change must be a table, not a number\n"
                                                "e:3:29: error: 'at' is missing\n"
                                                "e:3:29: error: 'to' is missing\n");
    EXPECT_EQ(SaidOf("1", "changes = [{ at = 1, to = 'x' }]"),
              "e:3:41: error: 'to' must be of the same kind as the parameter's 'value', not a string\n");
    EXPECT_EQ(SaidOf("1", "changes = [{ at = 2, to = 1 }, { at = 2, to = 3 }]"),
              "e:3:53: error: 'at' must be later than that of the change before\n");
}

TEST(EngineBehaviourReader, WrongSequences_AreReported) {
    EXPECT_EQ(SaidOf("1", "sequence = 1"),
              "e:3:26: error: 'sequence' must be a list of values, not a number\n");
    EXPECT_EQ(SaidOf("1", "sequence = []"),
              "e:3:26: error: 'sequence' is empty: add a value, or leave the key out\n");
    EXPECT_EQ(
        SaidOf("true", "sequence = [false, 1]"),
        "e:3:34: error: a value of the sequence must be of the same kind as the parameter's 'value', not "
        "a number\n");
    EXPECT_EQ(SaidOf("1", "sequence = [1], every = 0"), "e:3:39: error: 'every' must be above 0 seconds\n");
}

TEST(EngineBehaviourReader, WrongLoads_AreReported) {
    EXPECT_EQ(SaidOf("1", "loads = 1"), "e:3:23: error: 'loads' must be a list of loads, not a number\n");
    EXPECT_EQ(SaidOf("1", "loads = [1, {}]"), "e:3:24: error: a load must be a table, not a number\n"
                                              "e:3:27: error: 'at' is missing\n"
                                              "e:3:27: error: 'by' is missing\n");
    EXPECT_EQ(SaidOf("1", "loads = [{ at = 2, until = 2, by = 1 }]"),
              "e:3:42: error: 'until' must be later than 'at'\n");
}

TEST(EngineBehaviourReader, WrongFailures_AreReported) {
    const auto said = [](const std::string& fails) {
        return Said("[parameters.a]\nvalue = 1\nfails = " + fails + "\n");
    };
    EXPECT_EQ(said("{}"), "e:3:9: error: a failure needs 'from' or 'read'\n");
    EXPECT_EQ(said("{ until = 1 }"), "e:3:9: error: a failure needs 'from' or 'read'\n"
                                     "e:3:11: error: 'until' needs 'from'\n");
    EXPECT_EQ(said("{ from = 1, until = 1 }"), "e:3:29: error: 'until' must be later than 'from'\n");
    EXPECT_EQ(
        said("{ from = 'x' }"),
        "e:3:18: error: 'from' must be a number of seconds, or a text such as '250ms', '5s', '10min' or "
        "'1h', not 'x'\n");
    EXPECT_EQ(said("{ read = 0 }"),
              "e:3:18: error: 'read' must be a whole number above 0: 1 is the first read\n");
}

TEST(EngineBehaviourReader, ManyParametersThatFollowOneAnother_AreReadInTime) {
    std::string toml = "[parameters]\np0.value = 1\n";
    for (int i = 1; i < 30000; ++i)
        toml += fmt::format("p{} = {{ value = 1, behaviour = {{ follows = 'p{}' }} }}\n", i, i - 1);
    Diagnostics found;
    EXPECT_EQ(ReadEngine(toml, found).parameters.size(), 30000U);
    EXPECT_FALSE(found.HasErrors());
}

TEST(EngineBehaviourReader, EveryReferenceOnACircle_IsReported) {
    Diagnostics found;
    ReadEngine("[parameters]\na = { value = 1, behaviour = { follows = 'b' } }\n"
               "b = { value = 1, behaviour = { follows = ['c', 'd'] } }\n"
               "c = { value = 1, behaviour = { follows = 'a' } }\n"
               "d = { value = 1 }\ne = { value = 1, behaviour = { follows = 'a' } }\n",
               found);
    EXPECT_EQ(found.Print("f"), "f:2:42: error: 'a' follows itself through 'b'\n"
                                "f:3:43: error: 'b' follows itself through 'c'\n"
                                "f:4:42: error: 'c' follows itself through 'a'\n");
}

} // namespace

} // namespace vant::host
