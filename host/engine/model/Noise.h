#pragma once

#include <cstdint>
#include <string_view>

namespace vant::host {

// Noise as a function of the position in a stream: every reader sees the same, however often it reads. The
// arithmetic uses 64-bit integers alone, so every system computes the same numbers.

/// The mixing function of the generator SplitMix64: a bijection whose results look independent.
constexpr std::uint64_t Mix(std::uint64_t number) noexcept {
    number = (number ^ (number >> 30)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31);
}

/// The stream of noise for a name. Streams of different names are independent.
constexpr std::uint64_t NoiseStream(std::uint64_t seed, std::string_view name) noexcept {
    std::uint64_t hash = 0xCBF29CE484222325U; // FNV-1a
    for (const char each : name)
        hash = (hash ^ static_cast<unsigned char>(each)) * 0x100000001B3U;
    return Mix(seed + Mix(hash));
}

/// Uniformly distributed from -1 up to but not including 1: a multiple of 2^-52. Number `index` of SplitMix64
/// seeded with `stream`.
constexpr double NoiseAt(std::uint64_t stream, std::uint64_t index) noexcept {
    const std::uint64_t bits = Mix(stream + (index + 1) * 0x9E3779B97F4A7C15U);
    return static_cast<double>(bits >> 11) * 0x1p-52 - 1;
}

} // namespace vant::host
