#include <TalIec61850Analysis/events/EventReader.hpp>
#include <TalIec61850Analysis/events/MemberChanges.hpp>
#include <TalIec61850Analysis/traffic/ReadGoosePdu.hpp>
#include <utility>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

std::optional<std::int64_t> lifeIn(GooseView const& view) {
    auto const& life = view.timeAllowedtoLive;
    auto const* const number = life ? std::get_if<std::int64_t>(&*life) : nullptr;
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

/// The values of allData, by their indices in the frame.
Elements valuesIn(DataViews const& data, OctetString const& pdu, std::size_t pduOffset) {
    Octets const octets = data.octets();
    if (octets.empty()) {
        return {};
    }
    std::size_t const offset = pduOffset + static_cast<std::size_t>(octets.data() - pdu.data());
    return Elements(octets, offset, offset + octets.size());
}

}  // namespace

EventReader::EventReader(TrafficIndex const& index) : index_(index), window_(index) {}

void EventReader::load(std::size_t stream, PacketRef packet, Message& message) {
    StreamPart const& part = index_.streams()[stream].parts[packet.part];
    PacketColumns const& packets = part.packets;
    message.isCut = packets.flags()[packet.packet].isCut();
    message.pduOffset = packets.pduOffsets()[packet.packet];
    std::uint64_t const fileOffset = packets.frameOffsets()[packet.packet] + message.pduOffset;
    Octets const pdu = message.isCut ? readCutGoosePdu(window_, part.file, fileOffset)
                                     : readGoosePdu(window_, part.file, fileOffset);
    message.pdu.assign(pdu.begin(), pdu.end());
    message.view = viewGoose(message.pdu, 0);
}

std::optional<std::int64_t> EventReader::lifeOf(std::size_t stream, PacketRef packet) {
    load(stream, packet, before_);
    return lifeIn(before_.view);
}

EventReader::Data EventReader::dataOf(std::size_t stream, PacketRef packet) {
    load(stream, packet, now_);
    Data data{.values = {}, .timeAllowedtoLive = lifeIn(now_.view)};
    if (!now_.isCut && now_.view.allData) {
        data.values = valuesIn(*now_.view.allData, now_.pdu, now_.pduOffset);
    }
    return data;
}

EventPlace EventReader::placeOf(std::size_t stream, PacketRef packet) const {
    StreamPart const& part = index_.streams()[stream].parts[packet.part];
    return {.file = part.file,
            .fileOffset = part.packets.frameOffsets()[packet.packet] +
                          part.packets.pduOffsets()[packet.packet],
            .packet = packet};
}

void EventReader::compare(Message const& before, Message const& now, GooseEvent& event) {
    if (before.isCut || now.isCut) {
        event.data = EventData::cut;
        return;
    }
    if (!before.view.allData || !now.view.allData) {
        event.data = EventData::absent;
        return;
    }
    auto found = findMemberChanges(valuesIn(*before.view.allData, before.pdu, before.pduOffset),
                                   valuesIn(*now.view.allData, now.pdu, now.pduOffset));
    event.data = found.isSameMake ? EventData::compared : EventData::otherMake;
    event.changes = std::move(found.changes);
}

GooseEvent EventReader::read(std::size_t stream, StateChange const& change) {
    load(stream, change.before, before_);
    load(stream, change.packet, now_);
    GooseEvent event;
    event.stream = stream;
    event.arrival = change.arrival;
    if (auto const* const t = valueIn(now_.view.t)) {
        event.t = *t;
    }
    event.stNum = change.number.stNum;
    event.previousStNum = change.previousStNum;
    event.sqNum = change.number.sqNum;
    event.isRestart = change.isRestart;
    event.timeAllowedtoLive = lifeIn(now_.view);
    event.retransmissions = change.retransmissions;
    event.retransmissionCount = change.retransmissionCount;
    event.longestInterval = change.longestInterval;
    event.place = placeOf(stream, change.packet);
    event.before = placeOf(stream, change.before);
    compare(before_, now_, event);
    return event;
}

}  // namespace TalIec61850Analysis::detail
