#pragma once

#include "host/record/Journal.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

namespace vant::host {

/// What did not work in a run: the host calls that failed, and those that have failed ever since. Any thread
/// may call.
class FailedCalls {
public:
    /// Takes a call that is over. `counts`: whether a failure counts for the verdict; `ofTry`: whether it
    /// belongs to the current try.
    void Take(const Record& call, std::int64_t now, bool counts, bool ofTry = true);
    /// Takes any other work that was not done, as a sentence.
    void Add(std::string sentence);

    /// From now on failures belong to a try, which is either kept or dropped.
    void BeginTry();
    void KeepTry();
    void DropTry();

    /// How many failures count.
    std::size_t Count() const;
    std::size_t CountOfTry() const;
    /// The failures that count, the first few as sentences: "'load' ParameterService.GetParameter 9999: not
    /// found, 0x80070490". Empty if there are none.
    std::string Summary() const;

    /// The calls that failed the last time, and since when: "'guard' has not been able to Evaluate 'safe'
    /// since 1:30: cannot be read, 0x8007001E", separated by "; ".
    std::string StillFailing() const;

private:
    using Key = std::tuple<std::string, std::string, std::string, std::string>;
    struct Failing {
        std::int64_t since = 0;
        HRESULT code = S_OK;
    };
    struct Failures {
        std::vector<std::string> sentences{}; ///< The first few.
        std::size_t count = 0;

        void Add(std::string sentence);
    };
    static constexpr std::size_t mostSentences = 3;

    Failures& Current(bool ofTry) noexcept { return m_inTry && ofTry ? m_tried : m_kept; }

    mutable std::mutex m_access;
    std::map<Key, Failing> m_failing; ///< By command, service, operation and first argument.
    Failures m_kept;
    Failures m_tried; ///< Of the current try.
    bool m_inTry = false;
};

} // namespace vant::host
