#pragma once

#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <TalIec61850Analysis/packet/Sink.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// A value of a data set that is another than before.
struct MemberChange {
    /// Where it is: by index from 0, that of the outermost member first, then inside it.
    std::vector<std::uint32_t> member;
    /// What it was; not set where there was no value of its type.
    std::optional<DataValue> from;
    /// What it is.
    DataValue to;

    /// Member by member.
    friend bool operator==(MemberChange const&, MemberChange const&) = default;
};

/// What is known of the values of an event, and of those before it.
enum class EventData : std::uint8_t {
    compared,   ///< changes are all values that differ; there may be none
    otherMake,  ///< number, nesting or types of values differ: changes are all values that there
                ///< are
    cut,        ///< a snap length cut one of the two messages: there are no changes
    absent,     ///< one of the two messages has no allData: there are no changes
};

/// A message in a capture.
struct EventPlace {
    /// The number of the file in the index.
    std::uint32_t file = 0;
    /// Of the goosePdu, in octets from the start of the file.
    std::uint64_t fileOffset = 0;
    /// The packet of the stream.
    PacketRef packet;

    /// Member by member.
    friend bool operator==(EventPlace const&, EventPlace const&) = default;
};

/// The event of another stream that comes next.
struct NextEvent {
    /// The number of the stream in the index.
    std::size_t stream = 0;
    /// How long after, in nanoseconds.
    std::int64_t after = 0;

    /// Member by member.
    friend bool operator==(NextEvent const&, NextEvent const&) = default;
};

/// A new state of a GOOSE stream: its first message that came.
struct GooseEvent {
    /// As many retransmissions are listed: a state may last for days.
    static constexpr std::size_t kMostRetransmissions = 64;

    /// The number of the stream in the index.
    std::size_t stream = 0;
    /// When the message came, in nanoseconds since 1970, or kNoTime.
    std::int64_t arrival = kNoTime;
    /// When the state began, as the publisher says, with the quality of its clock. Not set where
    /// the message has no such time.
    std::optional<UtcTime> t;
    /// The number of the state.
    std::uint32_t stNum = 0;
    /// That of the state before.
    std::uint32_t previousStNum = 0;
    /// Of the message: above 0 where the first ones of the state are missing.
    std::uint32_t sqNum = 0;
    /// Whether the counters began anew, rather than went on.
    bool isRestart = false;
    /// What `changes` tell.
    EventData data = EventData::compared;
    /// The values that are others than in the message before, time stamps and qualities among them,
    /// in their order.
    std::vector<MemberChange> changes;
    /// In milliseconds, as the message says; not set where it has none.
    std::optional<std::int64_t> timeAllowedtoLive;
    /// When later messages of this state came, in nanoseconds after `arrival`: the first
    /// kMostRetransmissions of those that have a time. Late and repeated ones are left out.
    std::vector<std::int64_t> retransmissions;
    /// How many there were in all.
    std::uint64_t retransmissionCount = 0;
    /// The longest time between two messages of this state that came one after the other, in
    /// nanoseconds; not set where there are no two.
    std::optional<std::int64_t> longestInterval;
    /// Not set where no other stream changed within the time that was asked for.
    std::optional<NextEvent> next;
    /// The message.
    EventPlace place;
    /// The newest message of the stream before it.
    EventPlace before;

    /// Arrival less t, in nanoseconds, as it is: negative where the clocks say so. Not set where
    /// one of them is not known.
    [[nodiscard]] std::optional<std::int64_t> delay() const noexcept {
        return t && arrival != kNoTime ? std::optional(arrival - t->nanosecondsSince1970())
                                       : std::nullopt;
    }

    /// The longest interval as a part of timeAllowedtoLive: above 1 where the state has expired
    /// meanwhile, unless its later messages are to live longer, as those of many publishers are.
    /// Not set where one of them is not known, or the time is not above 0.
    [[nodiscard]] std::optional<double> longestPartOfLife() const noexcept {
        constexpr double kNsOfMillisecond = 1e6;
        return longestInterval && timeAllowedtoLive && *timeAllowedtoLive > 0
                   ? std::optional(static_cast<double>(*longestInterval) /
                                   (static_cast<double>(*timeAllowedtoLive) * kNsOfMillisecond))
                   : std::nullopt;
    }

    /// Member by member.
    friend bool operator==(GooseEvent const&, GooseEvent const&) = default;
};

/// Takes events without a list of them.
using EventSink = Sink<GooseEvent>;

}  // namespace TalIec61850Analysis
