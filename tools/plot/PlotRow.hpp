#pragma once

#include "tools/plot/SvgWriter.hpp"
#include "tools/plot/TimeAxis.hpp"

namespace TalIec61850Tools {

/// What all rows of a picture share.
struct PlotSheet {
    /// Of the picture, in pixels.
    double width = 0;
    /// Left and right of all that is drawn, in pixels.
    double margin = 8;
    TimeAxis time;

    /// Where texts must end.
    [[nodiscard]] double right() const { return width - margin; }
};

/// Text sizes of pictures, in pixels.
inline constexpr double kTitleSize = 15;
inline constexpr double kHeadingSize = 13;
inline constexpr double kUsualSize = 12;
inline constexpr double kSmallSize = 11;

/// A part of a picture that is as wide as it.
class PlotRow {
public:
    PlotRow() = default;
    PlotRow(PlotRow const&) = delete;
    PlotRow& operator=(PlotRow const&) = delete;
    virtual ~PlotRow() = default;

    /// In pixels.
    [[nodiscard]] virtual double height() const = 0;
    /// Whether it can take more room: see stretch.
    [[nodiscard]] virtual bool isElastic() const { return false; }
    /// Makes the elastic part of it so high.
    virtual void stretch(double) {}
    /// @param top  of the row, in pixels
    virtual void draw(SvgWriter& svg, double top) const = 0;
};

}  // namespace TalIec61850Tools
