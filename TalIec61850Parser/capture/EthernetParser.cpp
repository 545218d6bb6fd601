#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/capture/FilterRule.hpp>
#include <TalIec61850Parser/capture/FrameIndex.hpp>
#include <TalIec61850Parser/capture/FrameVerdict.hpp>
#include <cstddef>
#include <optional>
#include <string_view>

namespace TalIec61850Parser {

namespace {

/// A filter criterion inside an optional group of an identifier.
template <typename Identifier, typename Group, typename Value>
auto inGroup(std::optional<Group> Identifier::*group, std::optional<Value> Group::*member) {
    return [=](Identifier const& entry) {
        return entry.*group ? (*(entry.*group)).*member : std::nullopt;
    };
}

}  // namespace

void EthernetParser::parsePacket(std::vector<std::uint8_t> const& buffer, unsigned long offset,
                                 PcapFile& file, bool isNanosecond, PcapPacketHeader const& header,
                                 Filter const& filter, Db& db) {
    detail::indexFrame(
        buffer, offset, file.recordPosition, header,
        {.fileName = file.fileName, .isNanosecond = isNanosecond, .filter = filter, .db = db});
}

bool EthernetParser::parsePacketSimple(std::vector<std::uint8_t> const& frame,
                                       Filter const& filter) {
    return detail::judgeFrame(frame, filter);
}

template <typename Record, typename Identifiers>
bool EthernetParser::_checkEthernetFilters(Record& record, Identifiers const& filters,
                                           EthernetHeader const& header) {
    using Identifier = typename Identifiers::value_type;
    using detail::passes;

    record.srcMac = _macToString(header.srcMac);
    if (!passes(filters, &Identifier::srcMac, *record.srcMac)) {
        return false;
    }
    record.dstMac = _macToString(header.dstMac);
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

template bool EthernetParser::_checkEthernetFilters(Goose&,
                                                    std::vector<TalIec61850::GooseIdentifer> const&,
                                                    EthernetHeader const&);
template bool EthernetParser::_checkEthernetFilters(Sv&,
                                                    std::vector<TalIec61850::SvIdentifer> const&,
                                                    EthernetHeader const&);

std::string EthernetParser::_macToString(std::uint8_t const* mac) {
    constexpr std::string_view digits = "0123456789abcdef";
    constexpr std::size_t macSize = 6;
    std::string text;
    text.reserve(3 * macSize);
    for (std::size_t i = 0; i < macSize; ++i) {
        if (i > 0) {
            text += ':';
        }
        text += digits[mac[i] >> 4U];
        text += digits[mac[i] & 0x0FU];
    }
    return text;
}

}  // namespace TalIec61850Parser
