#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>

#include "tools/render/PictureNames.hpp"

namespace TalIec61850Tools {

/// What is drawn of the members of GOOSE streams.
struct LanePictureWish {
    TalIec61850Analysis::TimeWindow window;
    /// The instant that times are told from, in nanoseconds since 1970.
    std::int64_t from = 0;
    /// Lanes of a stream at most. Those that change come first.
    std::size_t mostLanes = 24;
    /// Times at which a lane changes, at most.
    std::size_t mostIntervals = 1024;
};

/// What the page holds of a GOOSE stream.
struct LanePicture {
    /// For the page; null where there is no lane.
    nlohmann::ordered_json json;
    /// Members that have no lane, though they could.
    std::size_t leftOut = 0;
    /// Whether intervals of a lane were joined.
    bool areJoined = false;
};

/// Draws the members of a GOOSE stream. Qualities and time stamps have no lanes; a quality that is
/// not good is a mark on the lane of the value before it.
/// @param stream  its number in the index
/// @throws std::system_error  a capture cannot be read
[[nodiscard]] LanePicture drawLanes(TalIec61850Analysis::TrafficIndex const& index,
                                    std::size_t stream, LanePictureWish const& wish,
                                    PictureNames const& names);

}  // namespace TalIec61850Tools
