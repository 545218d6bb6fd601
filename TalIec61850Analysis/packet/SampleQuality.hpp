#pragma once

#include <TalIec61850Analysis/packet/Quality.hpp>
#include <cstdint>

namespace TalIec61850Analysis {

/// The quality word of a sample: the bits of a quality from the lowest bit on, and the derived bit
/// of 9-2LE above them.
struct SampleQuality {
    /// All 32 bits.
    std::uint32_t word = 0;

    /// The bits as a quality.
    [[nodiscard]] Quality quality() const noexcept { return qualityFromBits(word); }
    /// The value was calculated, not measured.
    [[nodiscard]] bool derived() const { return (word & 0x2000U) != 0; }

    /// Member by member.
    friend bool operator==(SampleQuality const&, SampleQuality const&) = default;
};

}  // namespace TalIec61850Analysis
