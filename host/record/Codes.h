#pragma once

#include "platform/system.h"

#include <span>
#include <string>

namespace vant::host {

/// A result code and what it means in a report.
struct CodeMeaning {
    HRESULT code;
    const char* name; ///< As documents write it.
    const char* meaning;
};

/// The codes that the host and the commands return.
std::span<const CodeMeaning> CodeMeanings() noexcept;

/// What a code means, such as "not found"; null for an unknown code.
const char* MeaningOf(HRESULT code) noexcept;

/// What a code means, with the number behind it: "not found, 0x80070490"; only the number for an unknown
/// code.
std::string DescribeCode(HRESULT code);

} // namespace vant::host
