#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/pictures/MeasureCycle.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis {

/// One channel over time, a value for each instant of the track; NaN where nothing was measured.
struct TrackChannel {
    /// As ChannelCycle::rms.
    std::vector<double> rms;
    /// As Phasor::magnitude.
    std::vector<double> magnitudes;
    /// As Phasor::angle.
    std::vector<double> angles;
};

/// Root mean squares and phasors of a stream over time.
struct CycleTrack {
    /// In nanoseconds since 1970, in the order of samples.
    std::vector<std::int64_t> instants;
    /// By instant: what was measured with, in hertz; NaN where nothing was measured.
    std::vector<double> frequencies;
    /// In the order of `channelNumbers`.
    std::vector<TrackChannel> channels;
    /// Which channels of the stream they are, from 0.
    std::vector<std::size_t> channelNumbers;
    /// How many channels the stream has: more than those, where some were left out.
    std::size_t channelsOfStream = 0;
    /// Instants after these that are not in the track, because there would be too many.
    std::uint64_t leftOut = 0;
};

/// How tracks are made.
struct TrackOptions {
    /// From instant to instant, which are at whole multiples of it since 1970; at least a
    /// millisecond.
    std::chrono::nanoseconds step = std::chrono::milliseconds(20);
    /// How cycles are measured. They end at the instants, whatever is said of their place. To find
    /// the frequency at each instant takes some times as long as all else; a reference makes it
    /// faster.
    CycleOptions cycle = {};
    /// Instants at most.
    std::size_t mostInstants = 65'536;
    /// Channels of the stream, from 0; empty for the first kMostPictureChannels.
    std::vector<std::size_t> channels = {};
};

/// Measures cycles in the blocks of a SampleReader, at equal steps of time. Memory depends on the
/// instants, not on samples.
class CycleTrackBuilder {
public:
    /// @param options  which instants, and how to measure
    TALIEC61850ANALYSIS_EXPORT explicit CycleTrackBuilder(TrackOptions options = {});

    /// Adds all rows of a block.
    TALIEC61850ANALYSIS_EXPORT void add(SampleBlock const& block);

    /// What was measured until now. Nothing may be added after that.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT CycleTrack take();

private:
    void measureAt(std::int64_t instant);
    void matchChannels();
    [[nodiscard]] std::size_t rowsToKeep(SampleBlock const& block) const;

    TrackOptions options_;
    WaveformBuilder rows_;
    CycleTrack track_;
};

}  // namespace TalIec61850Analysis
