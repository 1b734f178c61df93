#pragma once

#include "host/runner/Operator.h"
#include "platform/InputLines.h"
#include "vant/ConsoleReport.h"

#include <functional>
#include <mutex>
#include <optional>
#include <ostream>

namespace vant::program {

/// The person at the terminal: prompts appear on a stream, and lines of standard input answer them. Any
/// thread; one prompt at a time.
class TerminalOperator final : public host::Operator {
public:
    /// `report`, which may be null, writes to the same stream, and shows the texts of prompts if
    /// `reportShowsPrompts`. Both must outlive this object.
    TerminalOperator(std::ostream& out, ConsoleReport* report, bool reportShowsPrompts)
        : m_out(out), m_report(report), m_showsTexts(!reportShowsPrompts) {}

    /// Nothing at the end of the input. While it waits, virtual time stands still.
    std::optional<host::Answer> Ask(const host::Prompt& prompt, const std::function<bool()>& isOver) override;

private:
    std::ostream& m_out;
    ConsoleReport* const m_report;
    const bool m_showsTexts;
    std::mutex m_oneAtATime;
    InputLines m_input;
};

/// Shows prompts as TerminalOperator does, but leaves every one to its standard answer.
class AbsentOperator final : public host::Operator {
public:
    /// Null: prompts are shown by the report.
    explicit AbsentOperator(std::ostream* out) : m_out(out) {}
    std::optional<host::Answer> Ask(const host::Prompt& prompt, const std::function<bool()>& isOver) override;

private:
    std::ostream* const m_out;
};

} // namespace vant::program
