#pragma once

// Internal: a frame's link layer as part of a stream's identity, and its filter criteria.

#include <TalIec61850Parser/capture/EthernetDecoder.hpp>
#include <TalIec61850Parser/capture/EthernetHeader.hpp>
#include <TalIec61850Parser/capture/FilterRule.hpp>
#include <TalIec61850Parser/store/HsrInfo.hpp>
#include <TalIec61850Parser/store/PrpInfo.hpp>
#include <TalIec61850Parser/store/VlanInfo.hpp>
#include <optional>
#include <vector>

namespace TalIec61850Parser::detail {

/// A filter criterion inside an optional group of an identifier.
template <typename Identifier, typename Group, typename Value>
auto inGroup(std::optional<Group> Identifier::*group, std::optional<Value> Group::*member) {
    return [=](Identifier const& entry) {
        return entry.*group ? (*(entry.*group)).*member : std::nullopt;
    };
}

/// EthernetParser::_checkEthernetFilters: puts addresses, VLAN, HSR and PRP into a fresh stream
/// record and matches them.
/// @return false when a criterion fails; the record is then filled up to that one
template <typename Record, typename Identifier>
[[nodiscard]] bool takeLinkLayer(EthernetHeader const& header, Record& record,
                                 std::vector<Identifier> const& filters) {
    record.srcMac = macToText(header.srcMac);
    if (!passes(filters, &Identifier::srcMac, *record.srcMac)) {
        return false;
    }
    record.dstMac = macToText(header.dstMac);
    if (!passes(filters, &Identifier::dstMac, *record.dstMac)) {
        return false;
    }
    // Deliberate: a frame without a tag or trailer is not asked for what would stand in it.
    if (header.hasVlan) {
        if (!passes(filters, inGroup(&Identifier::vlan, &VlanInfo::vlanId), header.vlanId)) {
            return false;
        }
        record.vlan.emplace().vlanId = header.vlanId;
    }
    if (header.hasHsr) {
        if (!passes(filters, inGroup(&Identifier::hsr, &HsrInfo::lanId), header.hsrLan)) {
            return false;
        }
        record.hsr.emplace().lanId = header.hsrLan;
    }
    if (header.hasPrp) {
        if (!passes(filters, inGroup(&Identifier::prp, &PrpInfo::lanId), header.prpLan)) {
            return false;
        }
        record.prp.emplace().lanId = header.prpLan;
    }
    return true;
}

}  // namespace TalIec61850Parser::detail
