#pragma once

// Internal: what is counted of a stream's or a source's frames.

#include <TalIec61850Analysis/redundancy/CopyCounts.hpp>
#include <TalIec61850Analysis/redundancy/DifferenceTally.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// Over which ways a frame came.
enum class CopyOutcome : std::uint8_t { both, onlyA, onlyB, more, wrongLan };

/// What became of one frame.
struct JudgedFrame {
    CopyOutcome outcome = CopyOutcome::both;
    Redundancy redundancy = Redundancy::none;
    bool differs = false;
    /// The way over which a copy is missing.
    std::optional<std::size_t> missing;
    /// Of `both`: the time over B minus that over A, and over which way the first came.
    std::int64_t difference = 0;
    std::size_t firstWay = 0;
    std::optional<std::int64_t> clockOffset;
    /// Whether it is in the window that is counted.
    bool isCounted = true;

    [[nodiscard]] bool isFaultless() const {
        return !differs && !missing && outcome != CopyOutcome::more &&
               outcome != CopyOutcome::wrongLan;
    }
};

/// Adds up frames that come in their order.
class CopyTally {
public:
    void add(JudgedFrame const& frame);
    /// To be called last.
    [[nodiscard]] CopyCounts result();

private:
    CopyCounts counts_;
    DifferenceTally differences_;
    std::uint64_t hsrFrames_ = 0;
    std::uint64_t prpFrames_ = 0;
    /// By way: whether the copy of the frame before is missing too, and counted.
    std::array<bool, 2> isMissing_{};
};

}  // namespace TalIec61850Analysis::detail
