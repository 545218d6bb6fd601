#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis {

/// What the values of one channel are in each column of a picture. Values are as they were sent,
/// not scaled; integers beyond 2^53 are the nearest number that a double has.
struct EnvelopeChannel {
    /// The least value; NaN in a column without any.
    std::vector<double> least;
    /// The largest value, likewise.
    std::vector<double> largest;
    /// The value of the sample that was taken first, likewise.
    std::vector<double> first;
    /// The value of the sample that was taken last, likewise.
    std::vector<double> last;
    /// How many values there are. Numbers that are not finite are none.
    std::vector<std::uint64_t> counts;
    /// Quality words, joined: all bits that any of the samples has, and of the validities the
    /// worst: invalid, then reserved, then questionable. 0 where no sample has one. See
    /// SampleQuality.
    std::vector<std::uint32_t> qualities;

    /// Member by member; NaN equals nothing.
    friend bool operator==(EnvelopeChannel const&, EnvelopeChannel const&) = default;
};

/// The samples of a stream in columns of equal width: one level of detail.
struct EnvelopeLevel {
    /// Of a column, in nanoseconds.
    std::int64_t width = 0;
    /// By column: samples that came.
    std::vector<std::uint64_t> received;
    /// By column: samples that never came.
    std::vector<std::uint64_t> missing;
    /// In the order of Envelopes::channelNumbers, each with a value for each column.
    std::vector<EnvelopeChannel> channels;

    /// How many columns there are.
    [[nodiscard]] std::size_t size() const noexcept { return received.size(); }

    /// Member by member; NaN equals nothing.
    friend bool operator==(EnvelopeLevel const&, EnvelopeLevel const&) = default;
};

/// The samples of a stream as pictures show them: the least and the largest value in each column of
/// pixels, at several levels of detail.
///
/// Column i of a level takes the samples from `start` + i * `width` on, and before `start` +
/// (i + 1) * `width`. A column of one level is two of the level before it, joined.
struct Envelopes {
    /// The first instant of the first column of all levels, in nanoseconds since 1970.
    std::int64_t start = 0;
    /// The finest first. None where there is no column: no window was given and no sample came, or
    /// the window is empty.
    std::vector<EnvelopeLevel> levels;
    /// Which channels of the stream they are, from 0.
    std::vector<std::size_t> channelNumbers;
    /// How many channels the stream has: more than those, where some were left out.
    std::size_t channelsOfStream = 0;
    /// Samples that are in no column: they have no time, or none between 1970 and 2115.
    std::uint64_t untimed = 0;

    /// The level to draw with: the coarsest one whose columns are no wider than this, or the
    /// finest.
    /// @param width  in nanoseconds
    /// @return below levels.size(), or 0
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::size_t levelFor(
        std::int64_t width) const noexcept;

    /// Member by member; NaN equals nothing.
    friend bool operator==(Envelopes const&, Envelopes const&) = default;
};

/// A level of half as many columns.
/// @return each column is two of `fine`, joined; the last one may be one of them. Without columns
///         where lists of `fine` that should have a value for each column do not
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT EnvelopeLevel joinColumns(EnvelopeLevel const& fine);

}  // namespace TalIec61850Analysis
