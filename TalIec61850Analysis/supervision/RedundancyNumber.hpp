#pragma once

// Internal: the sequence numbers of HSR and PRP.

#include <cstdint>

namespace TalIec61850Analysis::detail {

/// Of a packet without a sequence number of HSR or PRP.
inline constexpr std::int32_t kNoSequence = -1;

/// Whether a packet that was seen before is one more copy of a frame, by its redundancy number:
/// what a publisher repeats gets a new one.
/// @param newest  the number of the newest packet
[[nodiscard]] constexpr bool isExtraCopy(std::int32_t newest, std::int32_t sequence) {
    constexpr std::uint16_t kHalf = 0x8000;
    if (newest == kNoSequence || sequence == kNoSequence) {
        return false;
    }
    return static_cast<std::uint16_t>(newest - sequence) < kHalf;
}

}  // namespace TalIec61850Analysis::detail
