#pragma once

// Internal: what the messages of an event hold, read again from their captures.

#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <TalIec61850Analysis/events/StateWatch.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/CaptureWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// Makes events of changes of states.
class EventReader {
public:
    /// @param index  must outlive the reader
    explicit EventReader(TrafficIndex const& index);

    /// Makes an event, but for the next one.
    /// @param stream  the number of the stream
    /// @throws std::system_error  a capture cannot be read, or no longer has the message (ESTALE)
    [[nodiscard]] GooseEvent read(std::size_t stream, StateChange const& change);

    /// timeAllowedtoLive of a packet, in milliseconds.
    /// @throws std::system_error  as above
    [[nodiscard]] std::optional<std::int64_t> lifeOf(std::size_t stream, PacketRef packet);

    /// What one message holds.
    struct Data {
        /// Not set where a snap length cut the message, or it has no allData; valid until the next
        /// call of the reader.
        std::optional<Elements> values;
        /// In milliseconds.
        std::optional<std::int64_t> timeAllowedtoLive;
    };

    /// The values of a message.
    /// @throws std::system_error  as above
    [[nodiscard]] Data dataOf(std::size_t stream, PacketRef packet);

private:
    /// A message, as far as it was captured.
    struct Message {
        /// What the view points into.
        OctetString pdu;
        GooseView view;
        bool isCut = false;
        /// Index in the frame of the goosePdu.
        std::size_t pduOffset = 0;
    };

    void load(std::size_t stream, PacketRef packet, Message& message);
    static void compare(Message const& before, Message const& now, GooseEvent& event);
    [[nodiscard]] EventPlace placeOf(std::size_t stream, PacketRef packet) const;

    TrafficIndex const& index_;
    CaptureWindow window_;
    Message before_;
    Message now_;
};

}  // namespace TalIec61850Analysis::detail
