#include "tools/inspect/SvPacket.hpp"

#include <utility>

#include "tools/inspect/AsduReader.hpp"
#include "tools/inspect/ElementReader.hpp"
#include "tools/inspect/FieldReader.hpp"
#include "tools/inspect/PduPlace.hpp"

namespace TalIec61850Tools {

namespace {

using Frame = std::span<std::uint8_t const>;

constexpr std::uint8_t kSavPdu = 0x60;
constexpr std::uint8_t kSequenceOfAsdu = 0xA2;
constexpr std::uint8_t kAsdu = 0x30;

Reading<OctetString> readAny(OctetString&& octets) { return {std::move(octets)}; }

void takeSequence(Element&& sequence, SvPacket& packet, FieldReader& fields) {
    fields.report(sequence.offset, sequence.fault);
    ElementReader reader(std::move(sequence.value));
    while (auto element = reader.next()) {
        if (element->tag == kAsdu) {
            packet.asdus.push_back(readAsdu(std::move(*element), packet.faults));
        } else {
            fields.keep(std::move(*element));
        }
    }
}

/// Whether an element of a savPdu begins where the sequence of ASDU does.
bool leadsTo(std::size_t asdusOffset, Element const& savPdu) {
    ElementReader reader(savPdu.value);
    while (auto const element = reader.next()) {
        if (element->offset >= asdusOffset) {
            return element->offset == asdusOffset;
        }
    }
    return false;
}

void takeSavPdu(Element&& savPdu, std::size_t asdusOffset, SvPacket& packet, FieldReader& fields) {
    fields.report(savPdu.offset, savPdu.fault);
    ElementReader reader(std::move(savPdu.value));
    while (auto element = reader.next()) {
        if (element->offset == asdusOffset) {
            takeSequence(std::move(*element), packet, fields);
        } else if (element->tag == 0x80) {
            fields.take(packet.noASDU, std::move(*element), readCounter);
        } else if (element->tag == 0x81) {
            fields.take(packet.security, std::move(*element), readAny);
        } else {
            fields.keep(std::move(*element));
        }
    }
}

/// Reads the savPdu around the sequence, or the sequence alone where none leads to it.
/// @return index in the frame of what follows
std::size_t takePdu(Frame frame, std::size_t asdusOffset, SvPacket& packet, FieldReader& fields) {
    std::size_t const begin = packet.header.size;
    auto savPdu = elementAt(frame, begin, kSavPdu);
    auto sequence = elementAt(frame, asdusOffset, kSequenceOfAsdu);
    std::size_t end = begin;
    if (savPdu && (!sequence || leadsTo(asdusOffset, *savPdu))) {
        end = endOf(*savPdu);
        takeSavPdu(std::move(*savPdu), asdusOffset, packet, fields);
    } else if (sequence) {
        fields.report(begin, FaultKind::notThere);
        packet.leading = octetsBetween(frame, begin, asdusOffset);
        end = endOf(*sequence);
        takeSequence(std::move(*sequence), packet, fields);
    }
    if (!sequence) {
        fields.report(asdusOffset, FaultKind::notThere);
    }
    return end;
}

/// Index in the frame of the sequence of ASDU, or of where there is none any more.
std::size_t findSequence(Frame frame) {
    std::size_t const begin = readFrameHeader(frame).size;
    auto savPdu = elementAt(frame, begin, kSavPdu);
    if (!savPdu) {
        return begin;
    }
    ElementReader reader(std::move(savPdu->value));
    while (auto const element = reader.next()) {
        if (element->tag == kSequenceOfAsdu) {
            return element->offset;
        }
    }
    return reader.offset();
}

}  // namespace

SvPacket inspectSv(std::span<std::uint8_t const> frame, std::size_t asdusOffset) {
    SvPacket packet;
    FieldReader fields(packet.others, packet.faults);
    auto const readable = readablePart(frame);
    packet.header = readFrameHeader(readable);
    reportHeader(packet.header, readable, fields);
    std::size_t const end = takePdu(readable, asdusOffset, packet, fields);
    packet.trailing = takeTail(readable, end, packet.header);
    reportUnread(frame, fields);
    return packet;
}

SvPacket inspectSv(std::span<std::uint8_t const> frame) {
    return inspectSv(frame, findSequence(readablePart(frame)));
}

}  // namespace TalIec61850Tools
