#pragma once

#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "tools/names/StreamNames.hpp"
#include "tools/plot/PlotContent.hpp"

namespace TalIec61850Tools {

/// Which samples are drawn of a stream, and how finely.
struct SamplesWish {
    /// Window, layout and rate.
    TalIec61850Analysis::SampleOptions samples;
    /// What they are by a description; null without one.
    DescribedSamples const* described = nullptr;
    /// From 0; empty for the first 64.
    std::vector<std::size_t> channels;
    /// As of pictureChannels.
    std::vector<double> scales;
    /// Columns of pixels that there are. No more samples than that are drawn as they are.
    std::size_t pixels = 800;
    /// Whether samples with the attributes of a block are wanted.
    std::function<bool(TalIec61850Analysis::SampleBlock const&)> admits;
};

/// What was read of a stream.
struct ReadSamplesResult {
    /// Without a name.
    PlottedSamples samples;
    /// Of the first sample and the last one, in nanoseconds since 1970; kNoTime without any.
    std::int64_t first = TalIec61850Analysis::kNoTime;
    std::int64_t last = TalIec61850Analysis::kNoTime;
    /// As SampleDelay::least.
    std::int64_t delay = 0;
    /// Channels beyond those that are drawn.
    std::size_t channelsLeftOut = 0;
    /// Values that are no finite numbers.
    std::uint64_t notFinite = 0;
};

/// Reads samples of a stream for a picture, in one pass. Memory depends on pixels, not on samples.
/// @throws std::system_error  a capture cannot be read
[[nodiscard]] ReadSamplesResult readSamples(TalIec61850Analysis::TrafficIndex const& index,
                                            TalIec61850Analysis::TrafficStream const& stream,
                                            SamplesWish const& wish);

}  // namespace TalIec61850Tools
