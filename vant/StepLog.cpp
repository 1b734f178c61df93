#include "vant/StepLog.h"

#include <algorithm>
#include <fmt/format.h>

namespace vant::program {

namespace {

bool HasSameShape(const ReportLine& a, const ReportLine& b) {
    return a.shape == b.shape;
}

bool HasSameText(const ReportLine& a, const ReportLine& b) {
    return a.text == b.text;
}

} // namespace

void StepLog::BeginStep(const std::string& key, std::string name) {
    EndStep();
    m_variants = &m_known[key];
    m_name = std::move(name);
    m_holds = !m_variants->empty();
}

void StepLog::EndStep() {
    if (!m_variants)
        return;
    Variants& variants = *m_variants;
    const auto complete = std::find_if(variants.begin(), variants.end(), [this](const Variant& each) {
        return each.lines.size() == m_lines.size() && Repeats(each, m_lines);
    });
    if (m_holds && complete != variants.end()) {
        auto count = std::find_if(m_counts.begin(), m_counts.end(),
                                  [this](const auto& each) { return each.first == m_name; });
        if (count == m_counts.end())
            count = m_counts.insert(m_counts.end(), {m_name, 0});
        ++count->second;
        m_lines.clear();
    } else {
        Release();
        const auto similar = std::find_if(variants.begin(), variants.end(), [this](const Variant& each) {
            return std::equal(each.lines.begin(), each.lines.end(), m_lines.begin(), m_lines.end(),
                              HasSameShape);
        });
        Variant variant{std::move(m_lines)};
        if (similar != variants.end()) {
            variant.printed = similar->printed + 1;
            variants.erase(similar);
        } else if (variants.size() == mostVariants) {
            variants.pop_front();
        }
        variants.push_back(std::move(variant));
        m_lines = {};
    }
    m_variants = nullptr;
    m_holds = false;
}

void StepLog::Write(ReportLine line) {
    if (!m_variants)
        return Print(line);
    m_lines.push_back(std::move(line));
    if (!m_holds)
        Print(m_lines.back());
    else if (!MayBeCounted())
        Release();
}

void StepLog::Release() {
    if (!m_holds)
        return;
    m_holds = false;
    for (const ReportLine& each : m_lines)
        Print(each);
}

bool StepLog::MayBeCounted() const {
    return std::any_of(m_variants->begin(), m_variants->end(),
                       [this](const Variant& each) { return Repeats(each, m_lines); });
}

bool StepLog::Repeats(const Variant& variant, const std::vector<ReportLine>& lines) {
    return lines.size() <= variant.lines.size() &&
           std::equal(lines.begin(), lines.end(), variant.lines.begin(),
                      variant.printed < mostPrinted ? HasSameText : HasSameShape);
}

void StepLog::Print(const ReportLine& line) {
    PrintCounts();
    m_print(line.text + line.duration);
}

void StepLog::PrintCounts() {
    if (m_counts.empty())
        return;
    std::string line;
    for (const auto& [name, count] : m_counts)
        line +=
            fmt::format("{}{} {} more time{}", line.empty() ? "" : ", ", name, count, count == 1 ? "" : "s");
    m_counts.clear();
    m_print("\n... " + line);
}

} // namespace vant::program
