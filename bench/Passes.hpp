#pragma once

#include <TalIec61850Analysis/traffic/TrafficOptions.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/IndexOptions.hpp>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/Race.hpp"

// Contenders that pass over a whole capture file once in an iteration. Each counts what it finds,
// and says that it failed when that is not what is expected.

namespace TalBench {

/// Indexes the capture into a fresh store, which is destroyed outside the time.
/// @param packets   that the store is to hold then
/// @param progress  called as PcapParser calls it
/// @param options   how the file is read
[[nodiscard]] Race::Body indexPass(std::string const& path, TalIec61850Parser::Filter const& filter,
                                   std::uint64_t packets,
                                   std::function<void(double)> const& progress = {},
                                   TalIec61850Parser::IndexOptions const& options = {});

/// Indexes captures true to the wire; the index is destroyed outside the time.
/// @param frames  of GOOSE and SV that the index is to count
[[nodiscard]] Race::Body trafficPass(std::vector<std::string> const& paths,
                                     TalIec61850Analysis::TrafficOptions const& options,
                                     std::uint64_t frames);

/// The same by two processes that share nothing, each with half of the captures: what two cores of
/// this machine can do.
[[nodiscard]] Race::Body processesPass(std::vector<std::string> const& paths);

/// Reads the file with read(2) in blocks of 1 MiB: no reader is faster by much.
[[nodiscard]] Race::Body readPass(std::string const& path);

/// Drops what the system keeps of a file in memory before each round of a contender, outside the
/// time: its octets come from the disk, if there is one.
[[nodiscard]] Race::Body fromDisk(std::string const& path, Race::Body contender);

/// Walks the records with libpcap's pcap_next_ex, and does nothing with them.
[[nodiscard]] Race::Body libpcapPass(std::string const& path, std::uint64_t frames);

/// Rounds of a race in which tshark takes part: it is slow, and steady.
constexpr int kTsharkRounds = 3;

/// Has tshark print time, svID and smpCnt of each frame to nowhere.
[[nodiscard]] Race::Body tsharkPass(std::string const& path);

/// Whether there is a tshark to run.
[[nodiscard]] bool hasTshark();

}  // namespace TalBench
