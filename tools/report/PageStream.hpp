#pragma once

#include <TalIec61850Analysis/pictures/Envelope.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/names/StreamNames.hpp"
#include "tools/render/PictureNames.hpp"

namespace TalIec61850Tools {

/// What is drawn of the samples of an SV stream.
struct PageStreamWish {
    /// Which samples, and as what.
    TalIec61850Analysis::SampleOptions samples;
    /// From 0; empty for all.
    std::vector<std::size_t> channels;
    /// Factors from counts to units: one for all channels, or one for each; empty for those that
    /// the layout tells.
    std::vector<double> scales;
    /// The instant that times are told from, in nanoseconds since 1970.
    std::int64_t from = 0;
    /// Values of all channels that are held at most; each takes some 12 octets of memory.
    std::size_t mostValues = 8'000'000;
    /// Marks of missing samples, and of bad qualities of each channel, at most.
    std::size_t mostSpans = 1024;
    /// What the samples are by a description of the station; null without one.
    DescribedSamples const* described = nullptr;
    /// Whether samples with these attributes are wanted.
    std::function<bool(TalIec61850Analysis::SampleBlock const&)> admits;
};

/// What the page holds of an SV stream.
struct PageStream {
    /// For the page, but for where the octets are. Null where there is nothing to draw.
    nlohmann::ordered_json json;
    /// Values, packed: see NumberPacker.
    std::string octets;
    std::uint64_t received = 0;
    std::uint64_t missing = 0;
    /// Of the first sample and the last one, in nanoseconds since 1970; kNoTime without any.
    std::int64_t first = TalIec61850Analysis::kNoTime;
    std::int64_t last = TalIec61850Analysis::kNoTime;
    /// As SampleDelay::least.
    std::int64_t delay = 0;
    std::size_t channels = 0;
    /// Those that the stream has, in the picture or not.
    std::size_t channelsOfStream = 0;
    /// Samples themselves, rather than the least and largest of columns.
    bool hasSamples = false;
    /// Columns because the samples are too many to hold, or have too many breaks in time.
    bool isOverMemory = false;
    /// Of those columns: how many, and how wide in nanoseconds.
    std::size_t columns = 0;
    std::int64_t columnWidth = 0;
    /// Those columns, and those of how samples arrived, of one level each.
    TalIec61850Analysis::Envelopes values;
    TalIec61850Analysis::Envelopes arrivals;
};

/// Draws samples of a stream: the samples themselves, where they fit, or else columns of them.
/// @throws std::system_error  a capture cannot be read
[[nodiscard]] PageStream drawSamples(TalIec61850Analysis::TrafficIndex const& index,
                                     TalIec61850Analysis::TrafficStream const& stream,
                                     PageStreamWish const& wish, PictureNames const& names);

/// Draws a stream as columns of the least and the largest value.
/// @throws std::system_error  a capture cannot be read
[[nodiscard]] PageStream drawColumns(TalIec61850Analysis::TrafficIndex const& index,
                                     TalIec61850Analysis::TrafficStream const& stream,
                                     PageStreamWish const& wish, PictureNames const& names);

/// Makes two columns one, of a stream that is drawn as columns.
void halveColumns(PageStream& picture);

}  // namespace TalIec61850Tools
