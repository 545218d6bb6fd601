#pragma once

#include <optional>
#include <string>

#include "tools/plot/PlotContent.hpp"
#include "tools/plot/SvgWriter.hpp"

namespace TalIec61850Tools {

/// How a picture looks.
struct PlotStyle {
    Theme theme = Theme::light;
    /// In pixels.
    double width = 800;
    /// In pixels; not set for panels of usual height. Panels are never lower than is readable, so
    /// that the picture may be higher.
    std::optional<double> height = {};
};

/// Draws a picture: waveforms, GOOSE members and findings on one axis of time.
/// @return an SVG 1.1 document that loads nothing. How large it is depends on pixels and on how
///         much is listed, not on how many samples there are
[[nodiscard]] std::string drawPlot(PlotContent const& content, PlotStyle const& style);

}  // namespace TalIec61850Tools
