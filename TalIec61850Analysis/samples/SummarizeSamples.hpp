#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/samples/ArrivalResiduals.hpp>
#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/samples/SampleTimeSource.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// The samples of a stream in figures: their rate, their times, and how they arrived.
struct SampleSummary {
    /// The run that most samples are of, the first of several: it tells the rate. Not set where no
    /// sample was read.
    std::optional<SampleRun> run;
    /// The attributes of that run's first sample: smpRate and smpMod among them. Of the index;
    /// null where no sample was read.
    StreamAttributes const* attributes = nullptr;
    /// What became of the samples.
    SampleCounts counts;
    /// Packets that came again over the other LAN or lane.
    std::uint64_t copies = 0;
    /// Samples that came, by what tells their time; a SampleTimeSource is the place.
    std::array<std::uint64_t, 4> timeSources{};
    /// The values of smpSynch that were met, each once, the lowest first; SampleBlock::kNoSynch for
    /// samples without one.
    std::vector<std::uint16_t> smpSynchs;
    /// How arrival goes along with the times of samples; not set where no sample has both.
    std::optional<ArrivalResiduals> residuals;

    /// How many samples have their time from there.
    [[nodiscard]] std::uint64_t timedBy(SampleTimeSource source) const {
        return timeSources[static_cast<std::size_t>(source)];
    }
};

/// Goes through all samples of a stream, without their values: frames are read only where any has a
/// refrTm.
/// @param index   of the captures; must outlive the result
/// @param stream  of the index, SV
/// @param given   the rate, in place of what the stream tells
/// @throws std::system_error  a capture cannot be read, or no longer has its packets (ESTALE)
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT SampleSummary summarizeSamples(TrafficIndex const& index,
                                                                        TrafficStream const& stream,
                                                                        SampleRate given = {});

}  // namespace TalIec61850Analysis
