#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/pictures/ChannelChoice.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

/// One channel of a waveform, a value for each row.
struct WaveformChannel {
    /// As they were sent, not scaled; integers beyond 2^53 are the nearest number that a double
    /// has. NaN where the sample is missing or does not have the channel.
    std::vector<double> values;
    /// Quality words, see SampleQuality; 0 where there is none.
    std::vector<std::uint32_t> qualities;
};

/// From one row of a waveform on, samples are of this run.
struct WaveformRun {
    /// The number of the row.
    std::size_t firstRow = 0;
    /// As in the run of the samples.
    SampleRate rate;
    /// Why it begins.
    RunStart start = RunStart::first;

    /// Member by member.
    friend bool operator==(WaveformRun const&, WaveformRun const&) = default;
};

/// The samples of a stream themselves, as many as fit a budget.
struct Waveform {
    /// When samples were taken, in nanoseconds since 1970; of those that have no time, when they
    /// were captured; kNoTime without either.
    std::vector<std::int64_t> times;
    /// Whether samples came.
    std::vector<SampleState> states;
    /// In the order of `channelNumbers`.
    std::vector<WaveformChannel> channels;
    /// Which channels of the stream they are, from 0.
    std::vector<std::size_t> channelNumbers;
    /// How many channels the stream has: more than those, where some were left out.
    std::size_t channelsOfStream = 0;
    /// In the order of their rows.
    std::vector<WaveformRun> runs;
    /// There were more samples than the budget: there are no rows at all.
    bool isTooLong = false;

    /// How many rows there are.
    [[nodiscard]] std::size_t size() const noexcept { return times.size(); }
};

/// Collects the blocks of a SampleReader. Memory depends on the budget, not on samples.
class WaveformBuilder {
public:
    /// @param mostRows  the budget: missing samples count where they are rows
    /// @param channels  of the stream, from 0; empty for the first kMostPictureChannels
    TALIEC61850ANALYSIS_EXPORT explicit WaveformBuilder(std::size_t mostRows,
                                                        std::vector<std::size_t> channels = {});

    /// Adds all rows of a block.
    TALIEC61850ANALYSIS_EXPORT void add(SampleBlock const& block);

    /// What was added until now.
    [[nodiscard]] Waveform const& waveform() const noexcept { return waveform_; }
    /// Gives it away. Nothing may be added after that.
    [[nodiscard]] Waveform take() noexcept { return std::move(waveform_); }

    /// Forgets rows at the start, so that blocks can be added without end.
    /// @param rows  how many stay; the last ones do
    TALIEC61850ANALYSIS_EXPORT void keepLast(std::size_t rows);

private:
    void addChannels(SampleBlock const& block);
    void addRun(SampleBlock const& block);

    std::size_t mostRows_;
    ChannelChoice choice_;
    Waveform waveform_;
    /// Of the block added last.
    SampleRun run_;
};

/// Reads samples of a stream.
/// @param index     of captures that are still there
/// @param stream    of the index, SV
/// @param options   which samples; rows for missing ones should be asked for
/// @param mostRows  the budget
/// @param channels  of the stream, from 0; empty for the first kMostPictureChannels
/// @throws std::system_error  as SampleReader::next
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT Waveform
readWaveform(TrafficIndex const& index, TrafficStream const& stream, SampleOptions options,
             std::size_t mostRows, std::vector<std::size_t> channels = {});

}  // namespace TalIec61850Analysis
