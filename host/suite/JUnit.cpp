#include "host/suite/JUnit.h"

#include "host/record/ReportText.h"
#include "host/suite/Xml.h"

#include <cstdint>
#include <fmt/format.h>

namespace vant::host {

namespace {

/// An attribute of an element, with a blank before it.
std::string Attribute(const char* name, std::string_view value) {
    return fmt::format(" {}=\"{}\"", name, ToXml(value));
}

std::int64_t DurationOf(const CaseOutcome& outcome) {
    return outcome.result.is_null() ? 0 : outcome.result["duration"].get<std::int64_t>();
}

/// What an element says about several cases, or about one.
struct Totals {
    std::size_t tests = 0;
    std::size_t failures = 0;
    std::size_t errors = 0;
    std::size_t skipped = 0;
    std::int64_t milliseconds = 0;

    void Add(const CaseOutcome& outcome) {
        ++tests;
        failures += outcome.status == CaseStatus::Failed ? 1 : 0;
        errors += outcome.status == CaseStatus::Error ? 1 : 0;
        skipped += outcome.status == CaseStatus::NotRun ? 1 : 0;
        milliseconds += DurationOf(outcome);
    }

    void Add(const Totals& other) {
        tests += other.tests;
        failures += other.failures;
        errors += other.errors;
        skipped += other.skipped;
        milliseconds += other.milliseconds;
    }

    std::string Attributes() const {
        return fmt::format(" tests=\"{}\" failures=\"{}\" errors=\"{}\" skipped=\"{}\" time=\"{}\"", tests,
                           failures, errors, skipped, Seconds(milliseconds));
    }

    static std::string Seconds(std::int64_t milliseconds) {
        return fmt::format("{}.{:03}", milliseconds / 1000, milliseconds % 1000);
    }
};

std::string Property(const std::string& name, const std::string& value) {
    return "      <property" + Attribute("name", name) + Attribute("value", value) + "/>\n";
}

/// The tags of a run and its measurements.
std::string Properties(const Json& result) {
    std::string properties;
    for (const auto& [key, value] : result["tags"].items())
        properties += Property(key, value.get<std::string>());
    for (const Json& each : result["measurements"]) {
        const std::string name = each["name"];
        properties += Property("measurement " + name, Readable(ToValue(each["value"])));
        properties += Property("verdict of " + name, each["verdict"]);
        for (const char* const detail : {"units", "limits"}) {
            if (!each[detail].is_null())
                properties += Property(std::string(detail) + " of " + name, each[detail]);
        }
    }
    return properties.empty() ? "" : "    <properties>\n" + properties + "    </properties>\n";
}

/// The element that tells why a case has not passed.
std::string ReasonOf(const CaseOutcome& outcome) {
    switch (outcome.status) {
    case CaseStatus::Failed: {
        std::string text;
        for (const Mismatch& each : outcome.mismatches)
            text += fmt::format("{}: expected {}, but was {}\n", each.what, each.expected, each.came);
        const std::string first = text.substr(0, text.find('\n'));
        text += "reason of the verdict: " + outcome.result["reason"].get<std::string>();
        return fmt::format("    <failure{}{}>{}</failure>\n", Attribute("message", first),
                           Attribute("type", outcome.mismatches.front().what), ToXml(text));
    }
    case CaseStatus::Error:
        return fmt::format("    <error{} type=\"error\">{}</error>\n", Attribute("message", outcome.failure),
                           ToXml(outcome.failure));
    case CaseStatus::NotRun:
        return "    <skipped message=\"not run\"/>\n";
    default:
        return {};
    }
}

std::string CaseToXml(const TestCase& tested, const CaseOutcome& outcome) {
    const std::string content =
        (outcome.result.is_null() ? "" : Properties(outcome.result)) + ReasonOf(outcome);
    return fmt::format("  <testcase{}{}{} line=\"{}\" time=\"{}\"{}", Attribute("classname", tested.file),
                       Attribute("name", tested.name), Attribute("file", tested.file), tested.position.line,
                       Totals::Seconds(DurationOf(outcome)),
                       content.empty() ? "/>\n" : ">\n" + content + "  </testcase>\n");
}

} // namespace

std::string ToJUnit(const std::vector<TestCase>& cases, const std::vector<CaseOutcome>& outcomes) {
    std::string suites;
    Totals all;
    for (std::size_t begin = 0, end = 0; begin < cases.size(); begin = end) {
        const std::string& file = cases[begin].file;
        std::string content;
        Totals totals;
        for (; end < cases.size() && cases[end].file == file; ++end) {
            content += CaseToXml(cases[end], outcomes[end]);
            totals.Add(outcomes[end]);
        }
        suites += fmt::format("<testsuite{}{}>\n{}</testsuite>\n", Attribute("name", file),
                              totals.Attributes(), content);
        all.Add(totals);
    }
    return fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"vant test\"{}>\n{}"
                       "</testsuites>\n",
                       all.Attributes(), suites);
}

} // namespace vant::host
