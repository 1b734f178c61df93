#include "host/procedure/StepReader.h"

#include "host/procedure/QuestionReader.h"
#include "host/procedure/TableReader.h"
#include "host/text/Suggestion.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vant::host {

namespace {

class StepReader : private TableReader {
public:
    explicit StepReader(Diagnostics& found) : TableReader(found) {}

    Step Read(const toml::key& name, const toml::node& node) {
        Step step{.position = PositionOf(name)};
        const toml::table* const table = AsTable(node, "step " + Quoted(name.str()));
        if (!table)
            return step;
        CheckKeys(*table, "a step", keys);
        ReadWork(*table, step);
        ReadWaiting(*table, step);
        ReadTargets(*table, step);
        ReadEnd(*table, step);
        CheckShape(name, *table);
        if (step.always && step.ask && !step.ask->buttons.empty())
            m_found.Error(step.ask->buttons.front().position,
                          "'always' and 'buttons' exclude each other: leave one of them out");
        return step;
    }

private:
    /// What the step does.
    void ReadWork(const toml::table& table, Step& step) {
        if (const auto description = OptionalText(table, "description"))
            step.description = description->text;
        if (auto file = OptionalName(table, "procedure"))
            ReadCall(table, std::move(*file), step.procedure.emplace());
        else if (!table.contains("procedure"))
            for (const char* const key : {"arguments", "results"})
                CheckNeeds(table, key, "procedure");
        step.run = Names(table, "run", "a command id");
        step.mayFail = Names(table, "mayFail", "a command id or operation");
        if (const toml::node* const ask = table.get("ask"))
            step.ask = ReadQuestion(*ask, m_found);
    }

    void ReadCall(const toml::table& table, Located file, ProcedureCall& call) {
        call.file = std::move(file);
        ForEach(table, "arguments", [&](const toml::key& name, const toml::node& value) {
            std::string entry(name.str());
            if (const toml::table* const from = value.as_table()) {
                CheckKeys(*from, "an argument", {"data"});
                if (auto data = RequiredName(*from, "data", PositionOf(value)))
                    call.passed.emplace(std::move(entry), std::move(*data));
            } else if (auto scalar = Scalar(value, "argument " + Quoted(entry))) {
                call.given.emplace(std::move(entry), std::move(*scalar));
            }
        });
        ForEach(table, "results", [&](const toml::key& name, const toml::node& entry) {
            if (auto data = Text(entry, "result " + Quoted(name.str())))
                call.results.emplace(std::string(name.str()), std::move(*data));
        });
    }

    /// How long the step lasts.
    void ReadWaiting(const toml::table& table, Step& step) {
        step.delay = OptionalDuration(table, "delay");
        step.until = OptionalName(table, "until");
        step.wait = ReadWait(table);
        step.timeout = OptionalDuration(table, "timeout");
        if (step.timeout == 0)
            m_found.Error(PositionOf(*table.get("timeout")), "'timeout' must be above 0");
        CheckNeeds(table, "timedOut", "timeout");
        if (const toml::node* const retry = table.get("retry"))
            ReadRetry(*retry, step.retry);
    }

    Wait ReadWait(const toml::table& table) {
        const auto wait = OptionalText(table, "wait");
        if (!wait)
            return Wait::Not;
        if (wait->text == "transition")
            return Wait::Transition;
        if (wait->text == "end")
            return Wait::End;
        const std::string names[] = {"transition", "end"};
        m_found.Error(wait->position, "'wait' is \"transition\" or \"end\"" + DidYouMean(wait->text, names));
        return Wait::Not;
    }

    /// A number of times, or a table.
    void ReadRetry(const toml::node& node, Retry& retry) {
        if (const auto times = node.value_exact<std::int64_t>();
            times && *times > 0 && *times <= mostRetries) {
            retry.times = *times;
            return;
        }
        const toml::table* const table = node.as_table();
        if (!table) {
            m_found.Error(PositionOf(node), "'retry' must be a whole number from 1 to 1000, or a table");
            return;
        }
        CheckKeys(*table, "a retry", {"times", "after", "on"});
        const auto times = OptionalCount(*table, "times", 1);
        if (!HasOrMeans(*table, "times"))
            m_found.Error(PositionOf(node), "'times' is missing: how often is the step tried again?");
        else if (times && *times > mostRetries)
            m_found.Error(PositionOf(*table->get("times")), "'times' must be at most 1000");
        retry.times = times.value_or(0);
        retry.after = OptionalDuration(*table, "after").value_or(0);
        retry.on = Names(*table, "on", "a transition");
    }

    void ReadTargets(const toml::table& table, Step& step) {
        step.next = OptionalText(table, "next");
        step.failed = OptionalText(table, "failed");
        step.timedOut = OptionalText(table, "timedOut");
        step.always = OptionalText(table, "always");
        ForEach(table, "on", [&](const toml::key& id, const toml::node& target) {
            if (auto text = Text(target, "transition " + Quoted(id.str())))
                step.on.emplace(std::string(id.str()), std::move(*text));
        });
    }

    void ReadEnd(const toml::table& table, Step& step) {
        constexpr std::array verdicts = {std::pair{"passed", Verdict::Passed},
                                         std::pair{"failed", Verdict::Failed},
                                         std::pair{"error", Verdict::Error}};
        const auto end = OptionalText(table, "end");
        if (!end)
            return;
        std::vector<std::string> names;
        for (const auto& [name, verdict] : verdicts) {
            names.emplace_back(name);
            if (end->text == name)
                step.end = verdict;
        }
        if (!step.end)
            m_found.Error(end->position,
                          "'end' is \"passed\", \"failed\" or \"error\"" + DidYouMean(end->text, names));
    }

    /// A step either ends the procedure or leads somewhere.
    void CheckShape(const toml::key& key, const toml::table& table) {
        const std::string name = "step " + Quoted(key.str());
        if (table.contains("end")) {
            for (const auto& [other, node] : table) {
                const bool isKnown = std::find(keys.begin(), keys.end(), other.str()) != keys.end();
                if (isKnown && other != "end" && other != "description")
                    m_found.Error(PositionOf(other),
                                  name + " ends the procedure, so it can have no " + Quoted(other.str()));
            }
            return;
        }
        if (table.contains("always")) {
            for (const char* const other : {"next", "failed", "timedOut", "on"}) {
                if (table.contains(other))
                    m_found.Error(PositionOf(table.find(other)->first),
                                  "'always' and " + Quoted(other) +
                                      " exclude each other: leave one of them out");
            }
            return;
        }
        const toml::table* const on = table["on"].as_table();
        const bool isMeant =
            HasOrMeans(table, "next") || HasOrMeans(table, "end") || HasOrMeans(table, "always");
        const bool chooses = on ? !on->empty() && (HasOrMeans(table, "run") || HasOrMeans(table, "ask"))
                                : HasOrMeans(table, "on");
        if (!isMeant && !chooses)
            m_found.Error(PositionOf(key), name + " leads nowhere: add 'next', or 'end', or 'run' with 'on'");
    }

    static constexpr std::int64_t mostRetries = 1000;
    inline static const std::vector<std::string> keys = {
        "description", "procedure", "arguments", "results", "run",    "mayFail",  "ask",    "delay", "until",
        "wait",        "timeout",   "retry",     "next",    "failed", "timedOut", "always", "on",    "end"};
};

} // namespace

Step ReadStep(const toml::key& name, const toml::node& node, Diagnostics& found) {
    return StepReader(found).Read(name, node);
}

} // namespace vant::host
