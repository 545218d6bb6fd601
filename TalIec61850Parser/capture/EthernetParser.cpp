#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/capture/JudgeFrame.hpp>
#include <TalIec61850Parser/capture/index/IndexFrame.hpp>
#include <TalIec61850Parser/frame/Admission.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <TalIec61850Parser/wire/Hex.hpp>
#include <algorithm>
#include <iterator>
#include <optional>

namespace TalIec61850Parser {

namespace {

/// The link layer that a public header describes, all but where its payload is.
wire::LinkLayer toLinkLayer(EthernetHeader const& header) {
    wire::LinkLayer link;
    std::copy(std::begin(header.dstMac), std::end(header.dstMac), link.destination.begin());
    std::copy(std::begin(header.srcMac), std::end(header.srcMac), link.source.begin());
    link.etherType = header.etherType;
    link.vlanId = header.hasVlan ? std::optional(header.vlanId) : std::nullopt;
    link.hsrLan = header.hasHsr ? std::optional(header.hsrLan) : std::nullopt;
    link.prpLan = header.hasPrp ? std::optional(header.prpLan) : std::nullopt;
    return link;
}

}  // namespace

void EthernetParser::parsePacket(std::vector<std::uint8_t> const& buffer, unsigned long offset,
                                 PcapFile& file, bool isNanosecond, PcapPacketHeader const& header,
                                 Filter const& filter, Db& db) {
    detail::indexFrame({.buffer = buffer,
                        .index = offset,
                        .fileOffset = file.recordPosition,
                        .tsSec = header.tsSec,
                        .tsUsec = header.tsUsec},
                       {.fileName = file.fileName,
                        .variant = {.isNanosecond = isNanosecond, .isLittleEndian = false},
                        .filter = filter,
                        .db = db});
}

bool EthernetParser::parsePacketSimple(std::vector<std::uint8_t> const& frame,
                                       Filter const& filter) {
    return detail::judgeFrame(frame, filter);
}

template <typename Record, typename Identifiers>
bool EthernetParser::_checkEthernetFilters(Record& record, Identifiers const& filters,
                                           EthernetHeader const& header) {
    return detail::admitLinkLayer(toLinkLayer(header), record, filters);
}

template bool EthernetParser::_checkEthernetFilters(Goose&,
                                                    std::vector<TalIec61850::GooseIdentifer> const&,
                                                    EthernetHeader const&);
template bool EthernetParser::_checkEthernetFilters(Sv&,
                                                    std::vector<TalIec61850::SvIdentifer> const&,
                                                    EthernetHeader const&);

std::string EthernetParser::_macToString(std::uint8_t const* mac) {
    return wire::toColonHex({mac, wire::kMacSize});
}

}  // namespace TalIec61850Parser
