#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/render/PictureLanes.hpp"
#include "tools/terminal/TextForm.hpp"

namespace TalIec61850Tools {

/// A member of a data set for a picture of text.
struct TimelineLane {
    /// Safe for a terminal.
    std::string name;
    /// What it points to must outlive the drawing.
    PictureLane lane;
};

/// Members of a GOOSE stream for a picture of text.
struct TimelinePicture {
    std::vector<TimelineLane> lanes;
    /// The window that is drawn: the first instant, and the first one after it.
    std::int64_t from = 0;
    std::int64_t end = 0;
};

/// Draws lanes one below the other, a line each: what is true or on is filled, what is false or off
/// is a thin line, other values are written. A value begins in the column in which it came. Dots:
/// it is not known. A shaded column has more than one change. A line of marks below a lane says
/// where its quality is not good; below all is the axis.
/// @return lines, each with its end
[[nodiscard]] std::string timelineRows(TimelinePicture const& stream, TextForm const& form);

}  // namespace TalIec61850Tools
