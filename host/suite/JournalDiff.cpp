#include "host/suite/JournalDiff.h"

#include "host/record/CallScope.h"
#include "host/record/Codes.h"
#include "host/record/ReportText.h"
#include "host/record/Vocabulary.h"
#include "host/suite/Alignment.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace vant::host {

namespace {

/// So many items without a counterpart are looked for in one step.
constexpr std::size_t mostUnpaired = 2000;

/// What a record says of its subject; the other arguments name the subject.
constexpr std::array valueArguments = {
    argument::allMet,  argument::answer, argument::at,     argument::by,           argument::cookie,
    argument::count,   argument::failed, argument::handle, argument::key,          argument::phase,
    argument::reason,  argument::text,   argument::to,     argument::transitionId, argument::value,
    argument::verdict, argument::was,    argument::limits, argument::conditions};

bool IsValue(std::string_view name) {
    return std::any_of(valueArguments.begin(), valueArguments.end(),
                       [name](const char* each) { return name == each; });
}

/// Whether an argument of a record names its subject. A measurement is named by its name alone.
bool IsOfSubject(const Record& record, const Argument& argument) {
    if (record.operation == event::Measured)
        return argument.name == argument::name;
    return !IsValue(argument.name) && argument.value != Value(nullptr);
}

/// What a record is about, for a person; records with the same text belong together.
std::string SubjectOf(const Record& record) {
    std::string text = record.command.empty() ? "" : record.command + ": ";
    text += record.service == service::Runner ? record.operation : record.service + ' ' + record.operation;
    for (const Argument& each : record.arguments) {
        if (IsOfSubject(record, each))
            text += ' ' + Readable(each.value);
    }
    return Printable(text);
}

/// What happened on the runner's thread from one event to the next.
struct Part {
    std::string title;
    std::int64_t began = 0;
    std::int64_t ended = 0;
    std::vector<const Record*> records{};
};

/// How often a call came, and the last one.
struct Calls {
    std::size_t count = 0;
    const Record* last = nullptr;
};

/// A journal, taken apart.
struct Run {
    std::vector<Part> parts{};
    std::map<std::string, std::map<std::string, Calls>> threads{}; ///< By thread and subject.
};

class RunReader {
public:
    Run Read(std::span<const Record> records) {
        Begin("beginning", records.empty() ? 0 : records.front().time);
        for (const Record& each : records)
            Take(each);
        return std::move(m_run);
    }

private:
    void Begin(const std::string& title, std::int64_t time) {
        std::string whole;
        for (const std::string& outer : m_outer)
            whole += outer + " > ";
        m_run.parts.push_back({whole + title, time, time});
    }

    void Take(const Record& record) {
        if (record.thread != mainThread) {
            Calls& calls = m_run.threads[record.thread][SubjectOf(record)];
            ++calls.count;
            calls.last = &record;
            return;
        }
        const bool isEvent = record.service == service::Runner;
        if (isEvent && record.operation == event::ProcedureStarted && m_depth++ > 0)
            m_outer.push_back(m_step);
        if (isEvent && record.operation == event::StepEntered)
            Begin(m_step = "step " + Printable(record.Text(argument::step)), record.time);
        else if (isEvent && record.operation == event::FinallyStarted)
            Begin(m_step = "clean-up", record.time);
        else if (isEvent && IsOfEnd(record.operation) && m_step != end)
            Begin(m_step = end, record.time);
        m_run.parts.back().records.push_back(&record);
        m_run.parts.back().ended = record.time;
        if (isEvent && record.operation == event::ProcedureEnded && --m_depth > 0) {
            m_step = m_outer.back();
            m_outer.pop_back();
            Begin(m_step, record.time);
        }
    }

    static bool IsOfEnd(std::string_view event) {
        return event == event::DataLeft || event == event::Measured || event == event::ParameterLeft ||
               event == event::ProcedureEnded;
    }

    static constexpr const char* end = "end";

    Run m_run;
    int m_depth = 0;
    std::string m_step;
    std::vector<std::string> m_outer; ///< The steps that run the current procedure.
};

/// Numbers for texts, the same for the same text.
class Numbering {
public:
    std::size_t operator()(const std::string& text) {
        return m_numbers.emplace(text, m_numbers.size()).first->second;
    }

private:
    std::map<std::string, std::size_t> m_numbers;
};

/// The number in a value, or in a text.
std::optional<double> NumberOf(const Value& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
        double number = 0;
        const auto [end, mistake] = std::from_chars(text->data(), text->data() + text->size(), number);
        const bool isNumber = !text->empty() && mistake == std::errc() && end == text->data() + text->size();
        return isNumber ? std::optional(number) : std::nullopt;
    }
    return NumberIn(value);
}

class JournalComparer {
public:
    explicit JournalComparer(const DiffTolerance& tolerance) : m_tolerance(tolerance) {}

    std::vector<JournalDifference> Compare(const Run& a, const Run& b) {
        ComparePaths(a.parts, b.parts);
        CompareThreads(a, b);
        return std::move(m_found);
    }

private:
    void Note(std::string text) { m_found.push_back({m_place, std::move(text)}); }

    void ComparePaths(const std::vector<Part>& a, const std::vector<Part>& b) {
        const auto pairs = AlignBy(a, b, [](const Part& part) { return part.title; });
        if (!pairs) {
            m_place = "path";
            Note("the steps differ too much to be compared");
            return;
        }
        for (const AlignedPair& each : *pairs) {
            m_place = each.a ? a[*each.a].title : b[*each.b].title;
            if (each.a && each.b)
                CompareParts(a[*each.a], b[*each.b]);
            else
                Note(each.a ? "only in A" : "only in B");
        }
    }

    void CompareParts(const Part& a, const Part& b) {
        const auto pairs =
            AlignBy(a.records, b.records, [](const Record* record) { return SubjectOf(*record); });
        if (!pairs) {
            Note("what happened differs too much to be compared");
            return;
        }
        for (const AlignedPair& each : *pairs) {
            if (each.a && each.b)
                CompareRecords(*a.records[*each.a], *b.records[*each.b]);
            else if (each.a)
                Note(fmt::format("only in A: {}", SubjectOf(*a.records[*each.a])));
            else
                Note(fmt::format("only in B: {}", SubjectOf(*b.records[*each.b])));
        }
        const std::int64_t lastedA = a.ended - a.began;
        const std::int64_t lastedB = b.ended - b.began;
        if (std::abs(lastedA - lastedB) > m_tolerance.time)
            Note(fmt::format("lasted {} in A, {} in B", FormatDuration(lastedA), FormatDuration(lastedB)));
    }

    void CompareRecords(const Record& a, const Record& b) {
        for (const char* const name : valueArguments) {
            // A reason is made of what is compared already, and of times.
            if (name == argument::reason)
                continue;
            const Value* const inA = a.Find(name);
            const Value* const inB = b.Find(name);
            if ((inA || inB) && !IsSame(name, inA ? *inA : Value(), inB ? *inB : Value()))
                Note(fmt::format("{}: {} {} in A, {} in B", SubjectOf(a), name,
                                 inA ? Readable(*inA) : "missing", inB ? Readable(*inB) : "missing"));
        }
        if (a.result != b.result)
            Note(fmt::format("{}: {} in A, {} in B", SubjectOf(a), Result(a), Result(b)));
    }

    static std::string Result(const Record& record) {
        return record.result ? DescribeCode(*record.result) : "no result";
    }

    bool IsSame(std::string_view name, const Value& a, const Value& b) const {
        if (a == b)
            return true;
        const auto left = NumberOf(a);
        const auto right = NumberOf(b);
        const double tolerance =
            name == argument::at ? static_cast<double>(m_tolerance.time) : m_tolerance.value;
        return left && right && std::abs(*left - *right) <= tolerance;
    }

    void CompareThreads(const Run& a, const Run& b) {
        std::map<std::string,
                 std::pair<const std::map<std::string, Calls>*, const std::map<std::string, Calls>*>>
            threads;
        for (const auto& [name, calls] : a.threads)
            threads[name].first = &calls;
        for (const auto& [name, calls] : b.threads)
            threads[name].second = &calls;
        for (const auto& [name, both] : threads) {
            m_place = "thread " + Printable(name);
            if (both.first && both.second)
                CompareCalls(*both.first, *both.second);
            else
                Note(both.first ? "only in A" : "only in B");
        }
    }

    void CompareCalls(const std::map<std::string, Calls>& a, const std::map<std::string, Calls>& b) {
        std::map<std::string, std::pair<Calls, Calls>> all;
        for (const auto& [subject, calls] : a)
            all[subject].first = calls;
        for (const auto& [subject, calls] : b)
            all[subject].second = calls;
        for (const auto& [subject, both] : all) {
            const auto& [inA, inB] = both;
            if (inA.count != inB.count)
                Note(fmt::format("{}: {} in A, {} in B", subject, Times(inA.count), Times(inB.count)));
            if (inA.last && inB.last)
                CompareRecords(*inA.last, *inB.last);
        }
    }

    static std::string Times(std::size_t count) {
        return count == 0 ? "never" : count == 1 ? "once" : fmt::format("{} times", count);
    }

    template <class Items, class TextOf>
    static std::optional<std::vector<AlignedPair>> AlignBy(const Items& a, const Items& b, TextOf textOf) {
        Numbering number;
        const auto numbersOf = [&](const Items& items) {
            std::vector<std::size_t> numbers;
            numbers.reserve(items.size());
            for (const auto& each : items)
                numbers.push_back(number(textOf(each)));
            return numbers;
        };
        return Align(numbersOf(a), numbersOf(b), mostUnpaired);
    }

    const DiffTolerance m_tolerance;
    std::string m_place;
    std::vector<JournalDifference> m_found;
};

} // namespace

std::vector<JournalDifference> CompareJournals(std::span<const Record> a, std::span<const Record> b,
                                               const DiffTolerance& tolerance) {
    return JournalComparer(tolerance).Compare(RunReader().Read(a), RunReader().Read(b));
}

} // namespace vant::host
