#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace vant::host {

/// Two items that belong together, by their places in both sequences, or one that has no counterpart.
struct AlignedPair {
    std::optional<std::size_t> a{};
    std::optional<std::size_t> b{};

    bool operator==(const AlignedPair&) const = default;
};

/// Aligns two sequences so that as few items as possible have no counterpart; equal numbers belong together.
/// Nothing if there are more than `most` such items.
std::optional<std::vector<AlignedPair>> Align(std::span<const std::size_t> a, std::span<const std::size_t> b,
                                              std::size_t most);

} // namespace vant::host
