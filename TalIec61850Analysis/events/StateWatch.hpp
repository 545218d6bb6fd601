#pragma once

// Internal: when the state of a GOOSE stream changes.

#include <TalIec61850Analysis/packet/Sink.hpp>
#include <TalIec61850Analysis/traffic/MessageOrder.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/StreamWays.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// A message of one stream, as the index has it.
struct StateMessage {
    /// In nanoseconds, or kNoTime.
    std::int64_t arrival = kNoTime;
    PacketRef packet;
    MessageNumber number;
    /// Packets of several ways to the capture need not keep to one order.
    std::uint16_t way = 0;
    /// Whether there are stNum and sqNum.
    bool isCounted = true;
};

/// A message of a stream, as the index has it.
/// @param ways  of the stream
[[nodiscard]] StateMessage stateMessage(TrafficStream const& stream, StreamWays const& ways,
                                        PacketRef packet);

/// A new state, without what its messages hold.
struct StateChange {
    std::int64_t arrival = kNoTime;
    PacketRef packet;
    PacketRef before;
    MessageNumber number;
    std::uint32_t previousStNum = 0;
    bool isRestart = false;
    /// As those of a GooseEvent.
    std::vector<std::int64_t> retransmissions;
    std::uint64_t retransmissionCount = 0;
    std::optional<std::int64_t> longestInterval;
};

/// Takes changes of states, each when all is known of it.
using StateChangeSink = Sink<StateChange>;

/// Reads timeAllowedtoLive, in milliseconds, of a packet.
using LifeReader = std::function<std::optional<std::int64_t>(PacketRef packet)>;

/// Watches one stream, message by message, by counters and times alone. Copies over another LAN or
/// lane are to be left out.
class StateWatch {
public:
    /// A message has come.
    /// @param lifeOf  asked where only the time allowed to live tells a restart from a late message
    void add(StateMessage const& message, LifeReader const& lifeOf, StateChangeSink sink);

    /// No message comes any more.
    void finish(StateChangeSink sink);

private:
    void take(StateMessage const& message, LifeReader const& lifeOf, StateChangeSink sink);
    void accept(StateMessage const& message, StateChangeSink sink);
    void change(StateMessage const& message, bool isRestart, StateChangeSink sink);
    void repeat(StateMessage const& message);
    void setNewest(StateMessage const& message);
    [[nodiscard]] bool isExpired(std::int64_t arrival, LifeReader const& lifeOf);

    bool isStarted_ = false;
    StateMessage newest_;
    /// Of the newest message, or of its repetition.
    std::int64_t heard_ = kNoTime;
    /// Of the newest message, once it was asked for.
    std::optional<std::optional<std::int64_t>> life_;
    /// A message that may begin the counters anew.
    std::optional<StateMessage> candidate_;
    /// The state that goes on.
    std::optional<StateChange> state_;
};

}  // namespace TalIec61850Analysis::detail
