#pragma once

#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "tools/plot/PlotContent.hpp"

namespace TalTest {

/// 2024-03-20T10:00:00Z
inline constexpr std::int64_t kPlotStart = 1'710'928'800'000'000'000;

/// Samples of made-up channels.
struct MadeSamples {
    std::size_t count = 1000;
    /// From sample to sample, in nanoseconds.
    std::int64_t step = 250'000;
    /// The value of a channel at the time of a sample, in seconds.
    std::vector<std::function<double(double)>> channels = {};
    /// Numbers of samples that never came.
    std::function<bool(std::size_t)> isMissing = {};
    /// The quality of a sample.
    std::function<std::uint32_t(std::size_t)> quality = {};
    /// As of SamplesWish.
    std::size_t pixels = 700;
};

/// What pictures show of them: through the builders of the analysis library. The unit is A.
[[nodiscard]] TalIec61850Tools::PlottedSamples madeSamples(MadeSamples const& made);

/// A picture of them alone, from the first sample to one step after the last.
[[nodiscard]] TalIec61850Tools::PlotContent contentOf(MadeSamples const& made);

}  // namespace TalTest
