#pragma once

#include <cstdint>

#include "fuzz/FuzzInput.hpp"

namespace TalFuzz {

/// Octets that say a position: what a position is counted from, and how far.
inline constexpr std::size_t kPositionSize = 3;

/// A position of a file: near its begin, or near a power of two where numbers wrap.
inline std::uint64_t positionFrom(FuzzInput& input) {
    std::uint8_t const base = input.octet();
    std::uint64_t const offset = input.number();
    bool const isNearBegin = base < 0xC0;
    return isNearBegin ? offset : (std::uint64_t{1} << (base & 0x3FU)) + offset - 0x8000U;
}

}  // namespace TalFuzz
