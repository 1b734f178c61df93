#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace vant::program {

/// A line of a report, in three texts.
struct ReportLine {
    std::string text;     ///< What is printed, without the time that it took.
    std::string shape;    ///< What stays the same if only values differ.
    std::string duration; ///< Printed behind the text.
};

/// Prints the lines of steps, and counts steps that repeat what was printed, so that the report of a loop is
/// bounded. A step is counted if it has the same lines as an earlier time, but for durations; and if only
/// values differ, too, from the time on that it has been printed `mostPrinted` times. Its lines are held back
/// as long as they may still turn out to be the same.
class StepLog {
public:
    static constexpr std::size_t mostPrinted = 3;

    /// `print` prints one line.
    explicit StepLog(std::function<void(const std::string&)> print) : m_print(std::move(print)) {}

    /// The lines from now on belong to a step, up to the next one. `key` identifies it, `name` is
    /// for the line that counts.
    void BeginStep(const std::string& key, std::string name);
    /// The lines from now on belong to no step.
    void EndStep();
    void Write(ReportLine line);
    /// Prints what is held back; the current step is not counted.
    void Release();

private:
    /// What was printed of a step at one time.
    struct Variant {
        std::vector<ReportLine> lines;
        std::size_t printed = 1;
    };
    using Variants = std::deque<Variant>;
    static constexpr std::size_t mostVariants = 16;

    /// Whether the current step may still be one that is counted, by what it has written so far.
    bool MayBeCounted() const;
    static bool Repeats(const Variant& variant, const std::vector<ReportLine>& lines);
    void Print(const ReportLine& line);
    void PrintCounts();

    const std::function<void(const std::string&)> m_print;
    std::map<std::string, Variants> m_known;
    Variants* m_variants = nullptr; ///< Of the current step; null outside steps.
    std::string m_name;
    std::vector<ReportLine> m_lines; ///< Of the current step.
    bool m_holds = false;            ///< Nothing of them has been printed yet.
    std::vector<std::pair<std::string, std::size_t>>
        m_counts; ///< Names of steps, and how often they were counted.
};

} // namespace vant::program
