#include "host/runner/FailedCalls.h"

#include "host/record/Codes.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vant::host {

namespace {

/// What a call was about: its first argument that is a text.
std::string SubjectOf(const Record& call) {
    for (const Argument& each : call.arguments) {
        if (const auto* const text = std::get_if<std::string>(&each.value))
            return *text;
    }
    return {};
}

} // namespace

void FailedCalls::Failures::Add(std::string sentence) {
    ++count;
    const bool isNew = std::find(sentences.begin(), sentences.end(), sentence) == sentences.end();
    if (isNew && sentences.size() < mostSentences)
        sentences.push_back(std::move(sentence));
}

void FailedCalls::Take(const Record& call, std::int64_t now, bool counts, bool ofTry) {
    const HRESULT code = call.result.value_or(S_OK);
    const std::lock_guard lock(m_access);
    if (SUCCEEDED(code) && m_failing.empty())
        return;
    const Key key{call.command, call.service, call.operation, SubjectOf(call)};
    if (SUCCEEDED(code)) {
        m_failing.erase(key);
        return;
    }
    m_failing.try_emplace(key, Failing{now, code});
    if (counts)
        Current(ofTry).Add(fmt::format("{} {}.{}{}{}: {}", Quoted(call.command), call.service, call.operation,
                                       std::get<3>(key).empty() ? "" : " ", std::get<3>(key),
                                       DescribeCode(code)));
}

void FailedCalls::Add(std::string sentence) {
    const std::lock_guard lock(m_access);
    Current(true).Add(std::move(sentence));
}

void FailedCalls::BeginTry() {
    const std::lock_guard lock(m_access);
    m_inTry = true;
}

void FailedCalls::KeepTry() {
    const std::lock_guard lock(m_access);
    for (std::string& sentence : m_tried.sentences)
        m_kept.Add(std::move(sentence));
    m_kept.count += m_tried.count - m_tried.sentences.size();
    m_tried = {};
    m_inTry = false;
}

void FailedCalls::DropTry() {
    const std::lock_guard lock(m_access);
    m_tried = {};
    m_inTry = false;
}

std::size_t FailedCalls::Count() const {
    const std::lock_guard lock(m_access);
    return m_kept.count + m_tried.count;
}

std::size_t FailedCalls::CountOfTry() const {
    const std::lock_guard lock(m_access);
    return m_tried.count;
}

std::string FailedCalls::Summary() const {
    const std::lock_guard lock(m_access);
    if (m_kept.count == 0)
        return {};
    return fmt::format(
        "{}{}", fmt::join(m_kept.sentences, "; "),
        m_kept.count > m_kept.sentences.size() ? fmt::format("; {} failures in all", m_kept.count) : "");
}

std::string FailedCalls::StillFailing() const {
    std::vector<std::string> sentences;
    const std::lock_guard lock(m_access);
    for (const auto& [key, failing] : m_failing) {
        const auto& [command, service, operation, subject] = key;
        sentences.push_back(fmt::format("{} has not been able to {}{} since {}: {}",
                                        command.empty() ? "the step" : Quoted(command), operation,
                                        subject.empty() ? "" : fmt::format(" '{}'", subject),
                                        FormatTime(failing.since), DescribeCode(failing.code)));
    }
    return fmt::format("{}", fmt::join(sentences, "; "));
}

} // namespace vant::host
