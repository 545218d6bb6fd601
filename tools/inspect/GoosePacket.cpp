#include "tools/inspect/GoosePacket.hpp"

#include <utility>

#include "tools/inspect/DataReader.hpp"
#include "tools/inspect/ElementReader.hpp"
#include "tools/inspect/FieldReader.hpp"
#include "tools/inspect/PduPlace.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::uint8_t kGoosePdu = 0x61;
constexpr std::uint8_t kAllData = 0xAB;

/// What of allData was captured is read, even where the rest is missing.
void takeAllData(Element&& element, GoosePacket& packet, FieldReader& fields) {
    if (packet.allData) {
        element.fault = element.fault.value_or(FaultKind::repeated);
        fields.keep(std::move(element));
        return;
    }
    fields.report(element.offset, element.fault);
    packet.allData = readDataValues(std::move(element.value), packet.faults);
}

void takeElement(Element&& element, GoosePacket& packet, FieldReader& fields) {
    switch (element.tag.value_or(0)) {
        case 0x80:
            return fields.take(packet.gocbRef, std::move(element), readText);
        case 0x81:
            return fields.take(packet.timeAllowedtoLive, std::move(element), readCounter);
        case 0x82:
            return fields.take(packet.datSet, std::move(element), readText);
        case 0x83:
            return fields.take(packet.goID, std::move(element), readText);
        case 0x84:
            return fields.take(packet.t, std::move(element), readTime);
        case 0x85:
            return fields.take(packet.stNum, std::move(element), readCounter);
        case 0x86:
            return fields.take(packet.sqNum, std::move(element), readCounter);
        case 0x87:
            return fields.take(packet.simulation, std::move(element), readBoolean);
        case 0x88:
            return fields.take(packet.confRev, std::move(element), readCounter);
        case 0x89:
            return fields.take(packet.ndsCom, std::move(element), readBoolean);
        case 0x8A:
            return fields.take(packet.numDatSetEntries, std::move(element), readCounter);
        case kAllData:
            return takeAllData(std::move(element), packet, fields);
        default:
            return fields.keep(std::move(element));
    }
}

void takePdu(Element&& pdu, GoosePacket& packet, FieldReader& fields) {
    fields.report(pdu.offset, pdu.fault);
    ElementReader reader(std::move(pdu.value));
    while (auto element = reader.next()) {
        takeElement(std::move(*element), packet, fields);
    }
}

}  // namespace

GoosePacket inspectGoose(std::span<std::uint8_t const> frame, std::size_t pduOffset) {
    GoosePacket packet;
    FieldReader fields(packet.others, packet.faults);
    auto const readable = readablePart(frame);
    packet.header = readFrameHeader(readable);
    reportHeader(packet.header, readable, fields);
    std::size_t end = packet.header.size;
    if (auto pdu = elementAt(readable, pduOffset, kGoosePdu)) {
        end = endOf(*pdu);
        packet.leading = octetsBetween(readable, packet.header.size, pduOffset);
        takePdu(std::move(*pdu), packet, fields);
    } else {
        fields.report(pduOffset, FaultKind::notThere);
    }
    packet.trailing = takeTail(readable, end, packet.header);
    reportUnread(frame, fields);
    return packet;
}

GoosePacket inspectGoose(std::span<std::uint8_t const> frame) {
    return inspectGoose(frame, readFrameHeader(frame).size);
}

}  // namespace TalIec61850Tools
