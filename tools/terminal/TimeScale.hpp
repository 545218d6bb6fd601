#pragma once

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Tools {

/// Where times are in a picture: columns of equal width over a window.
class TimeScale {
public:
    /// @param from     the first instant of the first column, in nanoseconds since 1970
    /// @param end      the first instant after the last one; a window is at least a nanosecond long
    /// @param columns  how many there are; at least 1
    TimeScale(std::int64_t from, std::int64_t end, std::size_t columns)
        : end_(std::max(end, TalIec61850Analysis::afterTime(from))),
          from_(std::min(from, end_ - 1)),
          columns_(std::max<std::size_t>(columns, 1)) {}

    /// Columns from some others, such as dots from characters.
    /// @param factor  for each column so many
    [[nodiscard]] TimeScale finer(std::size_t factor) const {
        return {from_, end_, columns_ * factor};
    }

    [[nodiscard]] std::int64_t from() const { return from_; }
    [[nodiscard]] std::int64_t end() const { return end_; }
    [[nodiscard]] std::size_t columns() const { return columns_; }
    /// The width of a column, in nanoseconds.
    [[nodiscard]] double width() const {
        return static_cast<double>(end_ - from_) / static_cast<double>(columns_);
    }

    /// Where a time is, in columns after the start; below 0 and beyond the last one too.
    [[nodiscard]] double positionOf(std::int64_t time) const {
        double const after = static_cast<double>(time) - static_cast<double>(from_);
        double const exact = isNear(time) ? static_cast<double>(time - from_) : after;
        return exact * static_cast<double>(columns_) / static_cast<double>(end_ - from_);
    }
    /// Columns one after the other; none where both are equal.
    struct Span {
        std::size_t first = 0;
        std::size_t end = 0;
    };
    /// The columns that some time is in, in part or in full.
    /// @param from, to  the first instant, and the first one after it
    [[nodiscard]] Span spanOf(std::int64_t from, std::int64_t to) const {
        bool const isOutside = to <= from_ || from >= end_ || to <= from;
        return isOutside ? Span{} : Span{.first = columnOf(from), .end = columnOf(to - 1) + 1};
    }
    /// The column of a time; the first or the last one for those that are not in the window.
    [[nodiscard]] std::size_t columnOf(std::int64_t time) const {
        double const position = std::max(positionOf(time), 0.0);
        return std::min(static_cast<std::size_t>(std::min(position, 1e9)), columns_ - 1);
    }

private:
    /// Whether the difference to a time is exact.
    [[nodiscard]] bool isNear(std::int64_t time) const { return (time >= 0) == (from_ >= 0); }

    std::int64_t end_;
    std::int64_t from_;
    std::size_t columns_;
};

}  // namespace TalIec61850Tools
