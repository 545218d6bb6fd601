#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace TalIec61850Tools {

/// A state that the quality word of a sample tells.
struct QualityBit {
    std::string_view name;
    /// The bits that are looked at, and what they are where it is so.
    std::uint32_t mask = 0;
    std::uint32_t value = 0;
};

/// All of them: invalid, questionable and test come first.
[[nodiscard]] std::span<QualityBit const> qualityBits();

/// How many come first.
inline constexpr std::size_t kChiefQualityBits = 3;

}  // namespace TalIec61850Tools
