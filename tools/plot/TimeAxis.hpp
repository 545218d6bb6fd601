#pragma once

#include <cstdint>
#include <vector>

#include "tools/plot/SvgWriter.hpp"
#include "tools/render/RoundTicks.hpp"

namespace TalIec61850Tools {

/// The axis of time that all parts of a picture share.
class TimeAxis {
public:
    /// Pixels that labels take below it.
    static constexpr double kLabelHeight = 40;

    /// @param from, to     in nanoseconds since 1970; `to` is after `from`
    /// @param left, right  in pixels
    /// @param room         where labels must end at the right, in pixels
    TimeAxis(std::int64_t from, std::int64_t to, double left, double right, double room);

    [[nodiscard]] std::int64_t from() const { return from_; }
    [[nodiscard]] std::int64_t to() const { return to_; }
    [[nodiscard]] double left() const { return left_; }
    [[nodiscard]] double right() const { return right_; }
    [[nodiscard]] bool contains(std::int64_t time) const { return time >= from_ && time <= to_; }

    /// Where an instant is, in pixels; those that are not on the axis are at its ends.
    [[nodiscard]] double at(std::int64_t time) const;

    [[nodiscard]] TimeTicks const& ticks() const { return ticks_; }
    /// Lines at all ticks.
    void drawGrid(SvgWriter& svg, double top, double bottom) const;
    /// Ticks, the times at them, and once the day.
    void drawLabels(SvgWriter& svg, double top) const;

private:
    void drawDay(SvgWriter& svg, double x, double y, std::int64_t time) const;

    std::int64_t from_;
    std::int64_t to_;
    double left_;
    double right_;
    double room_;
    TimeTicks ticks_;
};

}  // namespace TalIec61850Tools
