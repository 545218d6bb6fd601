#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/plot/PlotContent.hpp"
#include "tools/plot/TimeAxis.hpp"
#include "tools/plot/ValueAxis.hpp"

namespace TalIec61850Tools {

/// One channel as the data of SVG paths.
struct Curve {
    /// The line; it ends where samples are missing.
    std::string line;
    /// A dot for each sample, where these are far from each other; else empty.
    std::string dots;
};

/// The values that channels have, as quantities.
/// @param channels  their places in `samples.channels`
[[nodiscard]] ValueRange panelValues(PlottedSamples const& samples,
                                     std::vector<std::size_t> const& channels);

/// Draws a channel: through its samples where these are there, or else as the least and the largest
/// value in each column of pixels.
/// @param channel  its place in `samples.channels`
/// @param top      of the panel, in pixels
[[nodiscard]] Curve drawCurve(PlottedSamples const& samples, std::size_t channel,
                              TimeAxis const& time, ValueAxis const& values, double top);

}  // namespace TalIec61850Tools
