#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <vector>

namespace TalIec61850Analysis {

/// What is known of the value of a member for some time.
enum class LaneState : std::uint8_t {
    known,    ///< it is the one that the newest message has
    several,  ///< it changes too often to be shown: intervals were joined
    lost,  ///< the first message of a new state is missing: it may have come at any time of these
    expired,  ///< the time allowed to live of the newest message is over
    unread,   ///< the message that tells it was cut by a snap length, or has no values
};

/// Some time for which the same is known of a value.
struct LaneInterval {
    /// The first instant, by arrival, in nanoseconds since 1970.
    std::int64_t from = 0;
    /// The first instant after it, likewise.
    std::int64_t to = 0;
    /// What is known.
    LaneState state = LaneState::known;
    /// The value; not set unless it is known.
    std::optional<DataValue> value;
    /// How many intervals were joined to this one; 1 where none were.
    std::uint64_t joined = 1;

    /// Member by member.
    friend bool operator==(LaneInterval const&, LaneInterval const&) = default;
};

/// The value of one member of a data set over time.
struct MemberLane {
    /// Where it is: by index from 0, that of the outermost member first, then inside it. As
    /// MemberChange::member.
    std::vector<std::uint32_t> member;
    /// In the order of time, and none at the same time as another. For a time without an interval,
    /// the data set has no such member, or nothing was captured of the stream.
    std::vector<LaneInterval> intervals;

    /// Member by member.
    friend bool operator==(MemberLane const&, MemberLane const&) = default;
};

/// The members of a GOOSE stream over time.
struct MemberLanes {
    /// In the order in which they were met; those of one message in the order of its values.
    std::vector<MemberLane> lanes;
    /// How many members are in no lane, because there would be too many.
    std::size_t leftOut = 0;
};

/// Which lanes are made.
struct LaneOptions {
    /// Lanes are cut at its ends: the one end that belongs to a window lasts a nanosecond.
    TimeWindow window = {};
    /// Lanes at most. Qualities and time stamps are members as others are.
    std::size_t mostLanes = 256;
    /// Intervals of a lane at most; at least 16. Where there are more, those that are near to each
    /// other are joined, in this lane alone.
    std::size_t mostIntervals = 4096;
    /// Ends soon after a stop is requested; lanes end there.
    std::stop_token stop = {};
};

/// Makes lanes of the members of a GOOSE stream.
///
/// States are told as by findEvents: a message of a state that is no event is taken to have the
/// same values. The first message of the stream tells the values until the first event. A lane ends
/// where the time allowed to live of the last message is over, or the last capture ends. Where that
/// ends with the first message, the lane lasts a nanosecond.
///
/// Two kinds of messages are read again: those that are events; and the last one before a pause
/// that is longer than the time allowed to live that is known of its state, to see when it expired.
/// Later messages of a state are taken to live as long as its first one, or longer. Memory grows
/// with events, not with packets. Where the clock of the capture is set back, nothing changes until
/// the time is reached again that it had.
/// @param index    of captures that are still there
/// @param stream   the number of the stream in the index; one that is not GOOSE has no lanes, nor
///                 has a number that the index does not have
/// @param options  which lanes
/// @throws std::system_error  a capture cannot be read again, or is another one now
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT MemberLanes
readMemberLanes(TrafficIndex const& index, std::size_t stream, LaneOptions const& options = {});

}  // namespace TalIec61850Analysis
