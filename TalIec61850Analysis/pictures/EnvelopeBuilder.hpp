#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/pictures/ChannelChoice.hpp>
#include <TalIec61850Analysis/pictures/Envelope.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

/// How samples are put into columns.
struct EnvelopeOptions {
    /// The first instant of the first column; not set for the first sample.
    std::optional<CaptureTime> from = {};
    /// The first instant after the last column; not set for the last sample.
    std::optional<CaptureTime> end = {};
    /// Columns of the finest level, at most: even, at least 16 and no more than 1,048,576; the
    /// nearest of those is taken. Where `from` or `end` is not set, there may be half as many.
    std::size_t columns = 4096;
    /// Coarser levels are made as long as the last one has more columns than this; at least 4.
    std::size_t fewestColumns = 256;
    /// Channels of the stream, from 0; empty for the first kMostPictureChannels.
    std::vector<std::size_t> channels = {};
};

/// Makes envelopes of the blocks of a SampleReader, in one pass. Memory depends on columns and
/// channels, not on samples.
///
/// Where the window has no start or no end, columns begin narrow. As time goes on, two become one.
class EnvelopeBuilder {
public:
    /// @param options  the window should be that of the SampleReader: samples that are not in it
    ///                 are left out
    TALIEC61850ANALYSIS_EXPORT explicit EnvelopeBuilder(EnvelopeOptions options = {});

    /// Adds all rows of a block. Missing samples are counted where they are rows: see
    /// SampleOptions::rows. After take(), nothing is added.
    TALIEC61850ANALYSIS_EXPORT void add(SampleBlock const& block);

    /// What was added until now, with all levels; nothing when it was taken before.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT Envelopes take();

private:
    /// @cond
    /// Rows of a block that are in one column, and are missing or are not.
    struct Rows {
        std::size_t first = 0;
        std::size_t end = 0;
        std::size_t column = 0;
        bool areMissing = false;
    };
    /// @endcond

    void matchChannels();
    void addRows(SampleBlock const& block, Rows const& rows);
    [[nodiscard]] bool reach(std::int64_t time, SampleBlock const& block);
    void widen();
    void shiftRight(std::size_t columns);
    void trim();
    [[nodiscard]] std::size_t endOfRows(SampleBlock const& block, Rows const& rows) const;
    [[nodiscard]] bool isBeyond(std::int64_t time) const;

    EnvelopeOptions options_;
    ChannelChoice choice_;
    bool isStartOpen_;
    bool isEndOpen_;
    /// Whether there are columns yet.
    bool isPlaced_ = false;
    /// Whether they were given away.
    bool isTaken_ = false;
    std::int64_t start_ = 0;
    /// Only where the window has an end.
    std::int64_t end_ = 0;
    EnvelopeLevel level_;
    std::uint64_t untimed_ = 0;
};

}  // namespace TalIec61850Analysis
