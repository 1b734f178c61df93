#include "host/text/Diagnostic.h"

#include "host/text/Printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vant::host {

std::string Diagnostic::Text(std::string_view file) const {
    return Printable(fmt::format("{}:{}:{}: {}: {}", position.file ? *position.file : file, position.line,
                                 position.column, severity == Severity::Error ? "error" : "warning",
                                 message));
}

void Diagnostics::Error(Position position, std::string message) {
    m_all.push_back({position, Severity::Error, std::move(message)});
    ++m_errors;
}

void Diagnostics::Warning(Position position, std::string message) {
    m_all.push_back({position, Severity::Warning, std::move(message)});
}

std::vector<Diagnostic> Diagnostics::Sorted() const {
    std::vector<Diagnostic> result = m_all;
    std::stable_sort(result.begin(), result.end(),
                     [](const Diagnostic& a, const Diagnostic& b) { return a.position < b.position; });
    return result;
}

std::string Diagnostics::Print(std::string_view file) const {
    std::string text;
    std::size_t printed = 0;
    for (const Diagnostic& each : Sorted()) {
        if (printed++ == mostPrinted)
            break;
        text += each.Text(file) + '\n';
    }
    if (m_all.size() > mostPrinted)
        text += Printable(fmt::format("{}: {} more messages are not shown; {} are errors in all", file,
                                      m_all.size() - mostPrinted, m_errors)) +
                '\n';
    return text;
}

} // namespace vant::host
