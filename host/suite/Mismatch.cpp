#include "host/suite/Mismatch.h"

#include "host/record/ReportText.h"
#include "host/runner/Runner.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <utility>

namespace vant::host {

namespace {

/// The names in a list, in one line.
template <class Names, class NameOf>
std::string Joined(const Names& names, NameOf nameOf) {
    std::string text;
    for (const auto& each : names)
        text += (text.empty() ? "" : " -> ") + Printable(nameOf(each));
    return text.empty() ? "no step" : text;
}

/// A value as a test file would have it.
std::string Shown(const Json& value) {
    return value.is_null() ? "no value" : Printable(value.dump());
}

/// A value or limits as a test file has them.
std::string Shown(const Limits& expected) {
    const bool isValue = expected.comparisons.size() == 1 && expected.oneOf.empty() && !expected.like &&
                         expected.comparisons.front().comparison == Comparison::Is;
    return isValue ? Shown(ToJson(expected.comparisons.front().value)) : Printable(Describe(expected));
}

class Comparer {
public:
    explicit Comparer(const Json& result) : m_result(result) {}

    std::vector<Mismatch> Compare(const Expectation& expected) {
        CompareVerdict(expected.verdict);
        if (expected.ending)
            CompareEnding(expected.ending->text);
        if (expected.path)
            ComparePath(*expected.path);
        for (const auto& [name, value] : expected.data)
            CompareValue("data " + Printable(name), value.limits, Find(m_result["data"], name));
        for (const auto& [name, measurement] : expected.measurements)
            CompareMeasurement(name, measurement);
        if (expected.left)
            CompareLeft(*expected.left);
        for (const Json& number : m_result["unusedAnswers"])
            Note("answer " + number.dump(), "to be used", "not used");
        const auto duration = m_result["duration"].get<std::int64_t>();
        if (expected.longest && duration > *expected.longest)
            Note("longest", "at most " + FormatDuration(*expected.longest), FormatDuration(duration));
        return std::move(m_found);
    }

private:
    void Note(std::string what, std::string expected, std::string came) {
        m_found.push_back({std::move(what), std::move(expected), std::move(came)});
    }

    static const Json* Find(const Json& object, const std::string& name) {
        const auto found = object.find(name);
        return found == object.end() ? nullptr : &*found;
    }

    void CompareVerdict(Verdict expected) {
        if (const std::string came = m_result["verdict"]; came != NameOf(expected))
            Note("verdict", NameOf(expected), came);
    }

    void CompareEnding(const std::string& expected) {
        const Json& path = m_result["path"];
        const std::string last = path.empty() ? "" : path.back().get<std::string>();
        if (last != expected)
            Note("ending", Printable(expected), path.empty() ? "no step" : Printable(last));
    }

    void ComparePath(const std::vector<Located>& expected) {
        const Json& path = m_result["path"];
        if (!std::equal(path.begin(), path.end(), expected.begin(), expected.end(),
                        [](const Json& step, const Located& each) { return step == each.text; }))
            Note("path", Joined(expected, [](const Located& each) { return each.text; }),
                 Joined(path, [](const Json& each) { return each.get<std::string>(); }));
    }

    /// `came`: null if there is no such value.
    void CompareValue(std::string what, const Limits& expected, const Json* came) {
        if (!came)
            Note(std::move(what), Shown(expected), "missing");
        else if (!Satisfies(expected, ToValue(*came)))
            Note(std::move(what), Shown(expected), Shown(*came));
    }

    void CompareMeasurement(const std::string& name, const ExpectedMeasurement& expected) {
        const std::string what = "measurement " + Printable(name);
        const Json& all = m_result["measurements"];
        const auto found =
            std::find_if(all.begin(), all.end(), [&](const Json& each) { return each["name"] == name; });
        if (found == all.end()) {
            Note(what, expected.verdict.value_or(Shown(expected.value.limits)), "missing");
            return;
        }
        const std::string verdict = (*found)["verdict"];
        const Json& value = (*found)["value"];
        if (expected.verdict && verdict != *expected.verdict)
            Note(what, *expected.verdict, verdict + ", " + Shown(value));
        if (HasAny(expected.value.limits))
            CompareValue(what, expected.value.limits, value.is_null() ? nullptr : &value);
    }

    void CompareLeft(const std::map<std::string, ExpectedValue>& expected) {
        std::map<std::string, const Json*> left;
        for (const Json& each : m_result["left"])
            left.emplace(each["id"], &each["value"]);
        for (const auto& [id, value] : expected) {
            const auto found = left.find(id);
            CompareValue("left " + Printable(id), value.limits,
                         found == left.end() ? nullptr : found->second);
        }
        for (const auto& [id, value] : left) {
            if (!expected.contains(id))
                Note("left " + Printable(id), "the value of the beginning", Shown(*value));
        }
    }

    const Json& m_result;
    std::vector<Mismatch> m_found;
};

} // namespace

std::vector<Mismatch> FindMismatches(const Expectation& expected, const Json& result) {
    return Comparer(result).Compare(expected);
}

} // namespace vant::host
