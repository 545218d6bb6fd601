#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// What a picture of an SV stream is to have.
struct StreamPictureOptions {
    /// Window, layout and rate. Missing samples are looked for and values are read, whatever is
    /// said of them here.
    SampleOptions samples = {};
    /// Channels of the stream, from 0; empty for the first kMostPictureChannels.
    std::vector<std::size_t> channels = {};
    /// As EnvelopeOptions::columns.
    std::size_t columns = 4096;
    /// As EnvelopeOptions::fewestColumns.
    std::size_t fewestColumns = 256;
    /// Where there are no more samples than this, missing ones included, they are in the picture
    /// themselves; 0 for none.
    std::size_t mostSamples = 0;
    /// As SpanOptions::qualityBits.
    std::uint32_t qualityBits = SpanOptions{}.qualityBits;
    /// As SpanOptions::mostSpans.
    std::size_t mostSpans = 4096;
};

/// Which samples a picture has.
struct SampleExtent {
    /// Samples that came.
    std::uint64_t received = 0;
    /// Samples that never came.
    std::uint64_t missing = 0;
    /// The earliest time, of arrival where samples have none; in nanoseconds since 1970, kNoTime
    /// without any.
    std::int64_t first = kNoTime;
    /// The latest time, as `first`.
    std::int64_t last = kNoTime;
    /// The first layout that is known; not set without any.
    std::optional<SampleLayout> layout = {};

    /// Takes the samples of a block in.
    TALIEC61850ANALYSIS_EXPORT void add(SampleBlock const& block);
};

/// All of an SV stream that pictures show.
struct StreamPicture {
    /// Columns at several levels of detail.
    Envelopes envelopes;
    /// Missing samples, and bad quality.
    SampleSpans spans;
    /// The samples, where they fit the budget.
    Waveform waveform;
    /// Which samples they are.
    SampleExtent extent;
    /// What became of the samples, those outside the window included: of readStreamPicture alone.
    SampleCounts counts = {};
};

/// Collects what pictures show of the blocks of a SampleReader, in one pass. Memory depends on what
/// is wanted, not on samples.
class StreamPictureBuilder {
public:
    /// @param options  of `samples`, the ends of the window alone count
    TALIEC61850ANALYSIS_EXPORT explicit StreamPictureBuilder(StreamPictureOptions const& options);

    /// Adds all rows of a block. Missing samples are seen where they are rows: see
    /// SampleOptions::rows.
    TALIEC61850ANALYSIS_EXPORT void add(SampleBlock const& block);

    /// What was added until now: which samples they are.
    [[nodiscard]] SampleExtent const& extent() const noexcept { return extent_; }
    /// All of it. Nothing may be added after that.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT StreamPicture take();

private:
    EnvelopeBuilder envelopes_;
    SampleSpanBuilder spans_;
    WaveformBuilder waveform_;
    SampleExtent extent_;
};

/// Reads all of a stream that pictures show, in one pass over its samples.
/// @param index    of captures that are still there
/// @param stream   of the index, SV
/// @param options  what is wanted
/// @throws std::system_error  as SampleReader::next
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT StreamPicture readStreamPicture(
    TrafficIndex const& index, TrafficStream const& stream, StreamPictureOptions options = {});

}  // namespace TalIec61850Analysis
