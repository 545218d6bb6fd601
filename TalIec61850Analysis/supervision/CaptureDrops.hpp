#pragma once

// Internal: what captures say of packets that they lost.

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <stop_token>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Packets that a capture dropped.
struct CaptureDrop {
    std::uint32_t file = 0;
    /// Of the record that tells it.
    std::uint64_t fileOffset = 0;
    /// Between these records, in nanoseconds, or kNoTime.
    std::int64_t from = kNoTime;
    std::int64_t until = kNoTime;
    std::uint64_t count = 0;
    /// Whether they were dropped directly before a record, not in some longer time.
    bool isExact = true;
};

/// Reads the drop counts of all captures that have any, in the order of time.
/// @param stop  ends it soon; what was read until then is given
/// @throws std::system_error  a capture cannot be read
[[nodiscard]] std::vector<CaptureDrop> findCaptureDrops(TrafficIndex const& index,
                                                        std::stop_token const& stop);

}  // namespace TalIec61850Analysis::detail
