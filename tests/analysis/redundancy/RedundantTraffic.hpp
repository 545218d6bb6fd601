#pragma once

// Frames that are sent over two ways, of each of which it is known when it came.

#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/Bytes.hpp"

namespace TalTest {

inline constexpr std::int64_t kMicrosecond = 1'000;
inline constexpr std::int64_t kMillisecond = 1'000'000;
inline constexpr std::int64_t kWholeSecond = 1'000'000'000;

/// One copy.
struct WireFrame {
    std::string svID = "MU01";
    std::string source = "02:00:00:00:00:01";
    /// Which frame of its stream it is, from 0.
    std::size_t number = 0;
    char way = 'A';
    bool isHsr = false;
    std::uint16_t sequence = 0;
    /// In nanoseconds after the start.
    std::int64_t time = 0;
    std::size_t file = 0;
    /// What its samples are.
    std::uint8_t value = 0;
    /// The trailer has a size that does not fit.
    bool isMisfit = false;
    std::size_t padding = 0;
};

using WireFrames = std::vector<WireFrame>;

/// A publisher of frames a millisecond apart, unless said.
struct SendPlan {
    std::size_t frames = 2000;
    std::uint16_t firstSequence = 100;
    std::int64_t interval = kMillisecond;
    std::int64_t delayA = 10 * kMicrosecond;
    std::int64_t delayB = 13 * kMicrosecond;
    bool isHsr = false;
    std::string svID = "MU01";
    std::string source = "02:00:00:00:00:01";
};

/// Both copies of each frame.
[[nodiscard]] WireFrames sendBoth(SendPlan const& plan);

/// The copy of a frame over a way.
[[nodiscard]] WireFrame& copyOf(WireFrames& frames, std::size_t number, char way);
/// Takes copies away.
void lose(WireFrames& frames, char way, std::size_t number, std::size_t count = 1);

/// Captures with nanoseconds, by the number of the file, frames in the order of their times.
/// @param clocks  how far the clock of each file is ahead, in nanoseconds; 0 for others
[[nodiscard]] std::vector<Bytes> capturesOf(WireFrames frames,
                                            std::vector<std::int64_t> const& clocks = {});

/// What pairing gives.
struct Paired {
    TalIec61850Analysis::TrafficIndex index;
    TalIec61850Analysis::TrafficRedundancy redundancy;
    std::vector<TalIec61850Analysis::RedundancyFault> faults;

    /// Of the only stream.
    [[nodiscard]] TalIec61850Analysis::CopyCounts const& counts() const {
        return redundancy.streams.at(0).counts;
    }
    /// Of an svID.
    [[nodiscard]] TalIec61850Analysis::CopyCounts const& counts(std::string const& svID) const;
    /// Faults in words: kind, way, smpCnt of the packet, count where it is more than one.
    [[nodiscard]] std::vector<std::string> faultLines() const;
};

[[nodiscard]] Paired pairIn(std::vector<Bytes> const& captures,
                            TalIec61850Analysis::PairingOptions const& options = {});
[[nodiscard]] Paired pairIn(WireFrames const& frames);

using FaultLines = std::vector<std::string>;

}  // namespace TalTest
