#pragma once

// Internal: link layer and application header as parts of a stream's identity, and the filter
// criteria that they must pass before the PDU is looked at.

#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <TalIec61850Parser/frame/FilterRule.hpp>
#include <TalIec61850Parser/store/HsrInfo.hpp>
#include <TalIec61850Parser/store/PrpInfo.hpp>
#include <TalIec61850Parser/store/VlanInfo.hpp>
#include <TalIec61850Parser/wire/ApplicationHeader.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <TalIec61850Parser/wire/Hex.hpp>
#include <TalIec61850Parser/wire/OptionalGroup.hpp>
#include <optional>
#include <vector>

namespace TalIec61850Parser::detail {

/// A filter criterion inside an optional group of an identifier.
template <typename Identifier, typename Group, typename Value>
auto inGroup(std::optional<Group> Identifier::*group, std::optional<Value> Group::*member) {
    return [=](Identifier const& entry) { return wire::memberOf(entry.*group, member); };
}

/// EthernetParser::_checkEthernetFilters: puts addresses, VLAN, HSR and PRP into a fresh stream
/// record and matches them.
/// @return false when a criterion fails; the record is then filled up to that one
template <typename Record, typename Identifier>
[[nodiscard]] bool admitLinkLayer(wire::LinkLayer const& link, Record& record,
                                  std::vector<Identifier> const& filters) {
    record.srcMac = wire::toColonHex(link.source);
    if (!passes(filters, &Identifier::srcMac, *record.srcMac)) {
        return false;
    }
    record.dstMac = wire::toColonHex(link.destination);
    if (!passes(filters, &Identifier::dstMac, *record.dstMac)) {
        return false;
    }
    // Deliberate: a frame without a tag or trailer is not asked for what would be in it.
    if (link.vlanId) {
        if (!passes(filters, inGroup(&Identifier::vlan, &VlanInfo::vlanId), *link.vlanId)) {
            return false;
        }
        record.vlan.emplace().vlanId = link.vlanId;
    }
    if (link.hsrLan) {
        if (!passes(filters, inGroup(&Identifier::hsr, &HsrInfo::lanId), *link.hsrLan)) {
            return false;
        }
        record.hsr.emplace().lanId = link.hsrLan;
    }
    if (link.prpLan) {
        if (!passes(filters, inGroup(&Identifier::prp, &PrpInfo::lanId), *link.prpLan)) {
            return false;
        }
        record.prp.emplace().lanId = link.prpLan;
    }
    return true;
}

/// Puts the header's values into a stream record, each once it has passed its criterion.
/// @return false when one does not pass
template <typename Record, typename Identifier>
[[nodiscard]] bool admitApplicationHeader(wire::ApplicationHeader const& header, Record& record,
                                          std::vector<Identifier> const& filters) {
    if (!passes(filters, &Identifier::appId, header.appId())) {
        return false;
    }
    record.appId = header.appId();
    if (!passes(filters, &Identifier::reserved1Bit0, header.reserved1Bit0())) {
        return false;
    }
    record.reserved1Bit0 = header.reserved1Bit0();
    return true;
}

/// Both, for a frame that is on its way into the store.
/// @param buffer  what the link layer was read from
/// @param trace   told that what comes after the rejected part is passed over, unless null
/// @return the PDU; nullopt when the frame is rejected or too short to have one
template <typename Record, typename Identifier>
[[nodiscard]] std::optional<wire::Octets> admitFrame(wire::Octets buffer,
                                                     wire::LinkLayer const& link, Record& record,
                                                     std::vector<Identifier> const& filters,
                                                     WalkTrace* trace) {
    wire::Octets unread = buffer.subspan(link.payloadIndex);
    if (admitLinkLayer(link, record, filters)) {
        auto const header = wire::readApplicationHeader(buffer, link.payloadIndex);
        if (!header) {
            return std::nullopt;
        }
        unread = header->pdu();
        if (admitApplicationHeader(*header, record, filters)) {
            return unread;
        }
    }
    if (trace != nullptr) {
        trace->passOver(unread);
    }
    return std::nullopt;
}

}  // namespace TalIec61850Parser::detail
