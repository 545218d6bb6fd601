#pragma once

#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// A member of a GOOSE data set that pictures show. What it points to is in the lanes that it was
/// chosen from.
struct PictureLane {
    TalIec61850Analysis::MemberLane const* lane = nullptr;
    /// The quality that is the next member of the same structure; null without one.
    TalIec61850Analysis::MemberLane const* quality = nullptr;
};

/// The members that pictures show.
struct PictureLanes {
    /// In the order of the data set.
    std::vector<PictureLane> lanes;
    /// Members that have none, though they could.
    std::size_t leftOut = 0;
};

/// Chooses the members that pictures show: not qualities and time stamps. Where there is no room
/// for all others, those that change come first.
/// @param all   must outlive what is returned
/// @param most  lanes at most
[[nodiscard]] PictureLanes pictureLanes(TalIec61850Analysis::MemberLanes const& all,
                                        std::size_t most);

/// Whether a member has more than one value as pictures show it, or is not known for some of the
/// time.
[[nodiscard]] bool isChanging(TalIec61850Analysis::MemberLane const& lane);

/// Some time, in nanoseconds since 1970: the first instant, and the first one after it.
struct LaneTime {
    std::int64_t from = 0;
    std::int64_t to = 0;
};

/// When the quality of a member is known, and not good.
[[nodiscard]] std::vector<LaneTime> badTimes(PictureLane const& lane);

/// Whether a value is true or on.
/// @return not set for values that are neither that nor the contrary
[[nodiscard]] std::optional<bool> bitOf(TalIec61850Analysis::DataValue const& value);

/// Whether a value is true or false, on or off, or between: what is drawn as a bit.
[[nodiscard]] bool isBit(TalIec61850Analysis::DataValue const& value);

/// A value on a lane, 40 columns of it; safe to show.
[[nodiscard]] std::string laneText(TalIec61850Analysis::DataValue const& value);

}  // namespace TalIec61850Tools
