#pragma once

// Internal: one quality word for several samples.

#include <array>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// All bits that any of two words has, and the worse validity of both: good, questionable, reserved
/// and invalid, from the best to the worst.
[[nodiscard]] constexpr std::uint32_t joinedQuality(std::uint32_t a, std::uint32_t b) noexcept {
    constexpr std::uint32_t kValidity = 3;
    // By the bits of a validity: good, invalid, reserved, questionable.
    constexpr std::array<std::uint8_t, 4> kRanks = {0, 3, 2, 1};
    std::uint32_t const ofA = a & kValidity;
    std::uint32_t const ofB = b & kValidity;
    return ((a | b) & ~kValidity) |
           (kRanks[std::size_t{ofA}] < kRanks[std::size_t{ofB}] ? ofB : ofA);
}

}  // namespace TalIec61850Analysis::detail
