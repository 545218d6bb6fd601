#pragma once

// Internal: where the clock of a capture was set.

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis::detail {

/// A step of the clock between two records of a file.
struct ClockStep {
    /// Frames after this offset in the file have times by the clock as it was set.
    std::uint64_t fileOffset = 0;
    /// How far ahead it was set, in nanoseconds.
    std::int64_t step = 0;
    /// The first packet after it, and the one of the same stream before.
    std::size_t stream = 0;
    PacketRef after;
    PacketRef before;
};

/// Finds the steps of each file, in its order, by its number.
///
/// The clock was set where time jumps, and the counters of all SV streams of the file go on as if
/// it had not: smpCnt goes on by one, from the last one of a wrap to 0. Where one SV stream alone
/// was there, that and the loss of whole wraps of the counter look the same: it is taken for a
/// loss; and so it is where a GOOSE stream lacks messages there. Where a file has no SV stream,
/// time that goes back tells.
[[nodiscard]] std::vector<std::vector<ClockStep>> findClockSteps(TrafficIndex const& index);

}  // namespace TalIec61850Analysis::detail
