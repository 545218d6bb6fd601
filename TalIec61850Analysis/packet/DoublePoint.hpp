#pragma once

#include <TalIec61850Analysis/packet/BitString.hpp>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// A double point position (IEC 61850-7-3, Dbpos).
enum class DoublePoint : std::uint8_t { intermediate = 0, off = 1, on = 2, bad = 3 };

/// Reads a bit-string as a position; nothing unless it has exactly two bits. Whether they are meant
/// as one, only a description of the data set can tell.
[[nodiscard]] inline std::optional<DoublePoint> readDoublePoint(BitStringView const& bits) {
    if (bits.size() != 2) {
        return std::nullopt;
    }
    return static_cast<DoublePoint>((bits[0] ? 2U : 0U) + (bits[1] ? 1U : 0U));
}

}  // namespace TalIec61850Analysis
