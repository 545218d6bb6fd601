#pragma once

// What the answer about one frame must be, told from the indexing road and from the plain walk.

#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "index/PlainWalk.hpp"
#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"

namespace TalTest {

/// The link layer as the library's filter test takes it. A trailer counts in frames of more than 17
/// octets.
inline TalIec61850Parser::EthernetHeader headerOf(Bytes const& frame, PlainLink const& link) {
    TalIec61850Parser::EthernetHeader header;
    std::copy_n(frame.begin(), 6, header.dstMac);
    std::copy_n(frame.begin() + 6, 6, header.srcMac);
    header.etherType = static_cast<std::uint16_t>(link.etherType);
    header.hasVlan = link.vlanId.has_value();
    header.vlanId = link.vlanId.value_or(std::uint16_t{0});
    header.hasHsr = link.hsrLan.has_value();
    header.hsrLan = link.hsrLan.value_or(char{0});
    header.hasPrp = link.prpLan.has_value() && frame.size() > 17;
    header.prpLan = header.hasPrp ? *link.prpLan : char{0};
    return header;
}

/// Whether the frame's addresses and tags pass the filter list of its protocol.
inline bool isAdmitted(Bytes const& frame, PlainLink const& link,
                       TalIec61850Parser::Filter const& filter) {
    using TalIec61850Parser::EthernetParser;
    TalIec61850Parser::EthernetHeader const header = headerOf(frame, link);
    TalIec61850Parser::Goose goose;
    TalIec61850Parser::Sv sv;
    return link.etherType == etherTypeGoose
               ? EthernetParser::_checkEthernetFilters(goose, filter.gooseFilters, header)
               : EthernetParser::_checkEthernetFilters(sv, filter.svFilters, header);
}

inline bool isIndexed(TalIec61850Parser::Db const& db) {
    return !db.gooseProto.streams.empty() || !db.svProto.streams.empty();
}

/// The answer that goes with what indexing made of the frame.
/// @param admitted  whether its addresses and tags pass the filter
/// @param indexed   whether it is in the index
inline bool verdictFor(std::optional<PlainLink> const& link,
                       TalIec61850Parser::Filter const& filter, bool admitted, bool indexed) {
    if (!link) return false;
    if (link->etherType == etherTypeGoose) return !filter.parseGoose || (admitted && indexed);
    if (link->etherType == etherTypeSampledValues) return !filter.parseSv || (admitted && !indexed);
    return false;
}

/// The frame with every 30 that could begin an empty sequence made a 60, which marks no ASDU: for
/// the two roads read an empty sequence differently, deliberately, and nothing else.
inline Bytes withoutEmptySequences(Bytes frame) {
    for (std::size_t i = 0; i + 1 < frame.size(); ++i) {
        if (frame[i] != 0x30) continue;
        std::uint8_t const length = frame[i + 1];
        std::size_t const octets = length & 0x7FU;
        bool empty = length == 0;
        if (length >= 0x80 && octets <= 4 && i + 2 + octets <= frame.size()) {
            auto const begin = frame.begin() + static_cast<std::ptrdiff_t>(i) + 2;
            empty = std::all_of(begin, begin + static_cast<std::ptrdiff_t>(octets),
                                [](std::uint8_t octet) { return octet == 0; });
        }
        if (empty) frame[i] = 0x60;
    }
    return frame;
}

/// The last svID and confRev that are read from one level of a savPdu and all below it, without a
/// filter.
inline void plainSimpleSv(Bytes const& level, bool inAsdu, TalIec61850::SvIdentifer& id) {
    using TalIec61850Parser::Asn1Parser;
    std::size_t at = 0;
    TalIec61850Parser::Asn1Tag element;
    for (int count = 0; count < 50 && at < level.size(); ++count) {
        if (!Asn1Parser::parseTag(level, at, element)) return;
        std::uint8_t const tag = element.tag;
        if (tag >= 0x80 && tag <= 0x9F) {
            if (inAsdu && tag == 0x80) id.svID = Asn1Parser::bytesToString(element.value);
            if (inAsdu && tag == 0x83) id.confRev = Asn1Parser::bytesToUint32(element.value);
        } else if (tag == 0x30 || tag == 0x60 || (tag >= 0xA0 && tag <= 0xBF)) {
            if (element.value.empty()) continue;
            if (tag == 0x30) inAsdu = true;
            plainSimpleSv(Bytes(element.value), inAsdu, id);
        }
    }
}

}  // namespace TalTest
