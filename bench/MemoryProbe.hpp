#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// Asks the program memory-probe, which is one of its own: its heap counts, and at its start it is
// as small as a process can be.

namespace TalBench {

/// What indexing a capture into a fresh store took from the heap.
struct Allocations {
    std::int64_t all = 0;
    /// Those of the lists of packets: what as many plain std::deque<Package> allocate, to each of
    /// which as many packets are appended as the store's hold. With libstdc++ that is a node of 512
    /// octets for every 32 packets, and now and then a bigger map of the nodes.
    std::int64_t ofDeques = 0;
};

/// @throws std::runtime_error, as all of these, when the program fails
[[nodiscard]] Allocations allocationsOfIndexing(std::string const& path);

/// The growth of the resident memory (VmRSS) of a process that indexes a capture and keeps the
/// store, in octets per packet.
[[nodiscard]] double residentPerPacket(std::string const& path);

/// The same of the index true to the wire, in octets per packet of its streams.
[[nodiscard]] double residentPerTruePacket(std::string const& path);

/// The most that the resident memory (VmHWM) of a process grows by that finds records of a capture
/// by offsets drawn in it, and reads their frames, in MiB.
[[nodiscard]] double peakOfRecordAt(std::string const& path);

/// By how much the resident memory (VmHWM) of a process grows at most that uses an input built to
/// hurt, in octets.
/// @param name  of the input
/// @param path  where it was written
[[nodiscard]] double peakOfHostile(std::string const& name, std::string const& path);

/// How often judging each of judgedFrames() takes memory from the heap, with the frame's text.
[[nodiscard]] std::vector<std::pair<std::string, double>> allocationsOfJudging();

}  // namespace TalBench
