#include "host/text/Diagnostic.h"

#include <algorithm>
#include <utility>

namespace vant::host {

std::string Diagnostic::Text(std::string_view file) const {
    return std::string(file) + ':' + std::to_string(position.line) + ':' + std::to_string(position.column) +
           (severity == Severity::Error ? ": error: " : ": warning: ") + message;
}

void Diagnostics::Error(Position position, std::string message) {
    m_all.push_back({position, Severity::Error, std::move(message)});
    m_hasErrors = true;
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

} // namespace vant::host
