#pragma once

#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <cstdint>

namespace TalIec61850Tools {

/// The rows of a record in time: row after row at one rate.
struct RecordGrid {
    /// Of row 0, in nanoseconds since 1970.
    std::int64_t start = 0;
    TalIec61850Analysis::SampleRate rate;

    /// When a row is, in nanoseconds since 1970.
    [[nodiscard]] std::int64_t timeOf(std::int64_t row) const {
        return row < 0 ? start - rate.timeOf(-row) : start + rate.timeOf(row);
    }
    /// The row that is nearest to an instant.
    [[nodiscard]] std::int64_t nearest(std::int64_t time) const;
    /// How far an instant is from the row nearest to it, as a part of the interval: 0 to 0.5.
    [[nodiscard]] double awayFrom(std::int64_t time) const;
};

}  // namespace TalIec61850Tools
