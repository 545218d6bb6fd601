#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/pictures/ChannelChoice.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

/// Samples one after the other that are missing, or have one quality.
struct SampleSpan {
    /// When the first of them was taken, in nanoseconds since 1970.
    std::int64_t from = 0;
    /// When the sample after the last of them is due, likewise; one nanosecond after the last,
    /// where the rate is not known.
    std::int64_t to = 0;
    /// How many they are.
    std::uint64_t samples = 0;
    /// Their quality words, see SampleQuality: all bits that any of them has, and of the validities
    /// the worst; 0 where they are missing.
    std::uint32_t quality = 0;
    /// How many such spans were joined, with what was between them; 1 where none were.
    std::uint64_t joined = 1;

    /// Member by member.
    friend bool operator==(SampleSpan const&, SampleSpan const&) = default;
};

/// Where samples of a stream are missing or of bad quality. Spans are in the order of samples.
struct SampleSpans {
    /// Of the stream.
    std::vector<SampleSpan> missing;
    /// By channel, in the order of `channelNumbers`: quality words that are not 0.
    std::vector<std::vector<SampleSpan>> qualities;
    /// Which channels of the stream they are, from 0.
    std::vector<std::size_t> channelNumbers;
    /// How many channels the stream has: more than those, where some were left out.
    std::size_t channelsOfStream = 0;
};

/// Which spans are looked for.
struct SpanOptions {
    /// The bits of quality words that count; others are taken for 0. These are all of a quality;
    /// that a value was derived is none of them.
    std::uint32_t qualityBits = 0x1FFF;
    /// Spans of the stream, and of each channel, at most; at least 16. Where there are more, those
    /// that are near to each other are joined.
    std::size_t mostSpans = 4096;
    /// Channels of the stream, from 0; empty for the first kMostPictureChannels.
    std::vector<std::size_t> channels = {};
};

/// Finds missing samples and bad quality in the blocks of a SampleReader. Memory depends on the
/// most spans, not on samples. Samples without a time, and without one of arrival, are passed over.
class SampleSpanBuilder {
public:
    /// @param options  which spans
    TALIEC61850ANALYSIS_EXPORT explicit SampleSpanBuilder(SpanOptions options = {});

    /// Adds all rows of a block. Missing samples are seen where they are rows: see
    /// SampleOptions::rows.
    TALIEC61850ANALYSIS_EXPORT void add(SampleBlock const& block);

    /// What was added until now. Nothing may be added after that.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT SampleSpans take();

private:
    /// @cond
    /// A list of spans, the last of which may go on.
    struct Course {
        std::vector<SampleSpan> spans;
        std::int64_t grain = 0;
        /// Whether the row before was in the last span.
        bool isOpen = false;
    };
    /// @endcond

    void addSpan(Course& course, SampleSpan const& span) const;
    void addMissing(SampleBlock const& block);
    void addQualities(SampleBlock const& block, Course& course,
                      std::vector<std::uint32_t> const& words) const;

    SpanOptions options_;
    ChannelChoice choice_;
    Course missing_;
    /// By chosen channel.
    std::vector<Course> qualities_;
    SampleRun run_;
};

}  // namespace TalIec61850Analysis
