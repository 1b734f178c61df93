#pragma once

#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// An answer that stands ready for a prompt.
struct ReadyAnswer {
    Position position{};
    std::string step{};     ///< Only for a prompt of that step; empty: of any.
    std::string prompt{};   ///< Only for a prompt whose text contains this.
    std::string answer{};   ///< As it would be entered.
    std::int64_t after = 0; ///< So many milliseconds of the run after the prompt appeared.
    bool repeats = false;   ///< For every such prompt, not for one alone.
    Position stepPosition{};
};

/// Reads the tables under `answer` in a file of answers; docs/procedures.md describes it. Each mistake is
/// noted, and reading goes on.
std::vector<ReadyAnswer> ReadAnswers(const toml::table& root, Diagnostics& found);
/// The same from the text of the file.
std::vector<ReadyAnswer> ReadAnswers(std::string_view toml, Diagnostics& found);

/// Reads such tables from the list under another key.
std::vector<ReadyAnswer> ReadAnswerList(const toml::node& node, std::string_view key, Diagnostics& found);

} // namespace vant::host
