#pragma once

// Captures to look for faults in.

#include <cstddef>

#include "support/Bytes.hpp"

namespace TalTest {

/// A capture file.
struct FaultyCapture {
    Bytes octets = {};
    std::size_t frames = 0;
};

/// Streams of two bays, with faults of their counters, contents, clocks and losses; classic.
[[nodiscard]] FaultyCapture captureOfFaultyStreams();

/// Two merging units that send over both LANs of PRP, with faults of the copies; classic.
[[nodiscard]] FaultyCapture captureOfFaultyCopies();

/// A capture that lost and cut frames, and whose clock was set, with a merging unit that changes
/// its rate; next-generation.
[[nodiscard]] FaultyCapture captureOfFaultyRecords();

}  // namespace TalTest
