#pragma once

// Internal: a frame's link layer as part of a stream's identity, and its filter criteria.

#include <TalIec61850Parser/capture/EthernetHeader.hpp>
#include <TalIec61850Parser/capture/FilterRule.hpp>
#include <TalIec61850Parser/store/HsrInfo.hpp>
#include <TalIec61850Parser/store/PrpInfo.hpp>
#include <TalIec61850Parser/store/VlanInfo.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <TalIec61850Parser/wire/Hex.hpp>
#include <TalIec61850Parser/wire/OptionalGroup.hpp>
#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

namespace TalIec61850Parser::detail {

/// The link layer that a public header describes, all but where its payload is.
inline wire::LinkLayer toLinkLayer(EthernetHeader const& header) {
    wire::LinkLayer link;
    std::copy(std::begin(header.dstMac), std::end(header.dstMac), link.destination.begin());
    std::copy(std::begin(header.srcMac), std::end(header.srcMac), link.source.begin());
    link.etherType = header.etherType;
    link.vlanId = header.hasVlan ? std::optional(header.vlanId) : std::nullopt;
    link.hsrLan = header.hasHsr ? std::optional(header.hsrLan) : std::nullopt;
    link.prpLan = header.hasPrp ? std::optional(header.prpLan) : std::nullopt;
    return link;
}

/// A filter criterion inside an optional group of an identifier.
template <typename Identifier, typename Group, typename Value>
auto inGroup(std::optional<Group> Identifier::*group, std::optional<Value> Group::*member) {
    return [=](Identifier const& entry) { return wire::memberOf(entry.*group, member); };
}

/// EthernetParser::_checkEthernetFilters: puts addresses, VLAN, HSR and PRP into a fresh stream
/// record and matches them.
/// @return false when a criterion fails; the record is then filled up to that one
template <typename Record, typename Identifier>
[[nodiscard]] bool takeLinkLayer(wire::LinkLayer const& link, Record& record,
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

}  // namespace TalIec61850Parser::detail
