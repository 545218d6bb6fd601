#pragma once

// Internal: lanes of members, interval after interval.

#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Makes the lanes of one data set. Time only goes on.
class LaneBuilder {
public:
    explicit LaneBuilder(LaneOptions const& options);

    /// From now on members have these values; not set where they cannot be read.
    void setValues(std::optional<Elements> const& values);

    /// Goes on to an instant; until then, this is known of all members.
    /// @param to  in nanoseconds; an earlier one than before changes nothing
    void goOn(std::int64_t to, LaneState state);

    [[nodiscard]] MemberLanes take();

private:
    struct Lane {
        MemberLane lane;
        std::int64_t grain = 0;
        /// Whether the data set has the member now; its value then, and its octets.
        bool isThere = false;
        std::uint8_t tag = 0;
        OctetString octets;
        DataValue value;
        /// Whether the value is the one of the last interval.
        bool isValueAdded = false;
    };

    [[nodiscard]] Lane* laneOf(std::vector<std::uint32_t> const& member);
    void append(Lane& lane, std::int64_t from, std::int64_t to, LaneState state) const;

    std::size_t mostLanes_;
    std::size_t mostIntervals_;
    std::int64_t from_;
    std::int64_t end_;
    std::vector<Lane> lanes_;
    /// Numbers of lanes by member; of those that are left out, the number of lanes.
    std::map<std::vector<std::uint32_t>, std::size_t> numbers_;
    std::size_t leftOut_ = 0;
    bool areRead_ = false;
    /// Lanes are made until then; kNoTime before the first message.
    std::int64_t until_ = kNoTime;
};

}  // namespace TalIec61850Analysis::detail
