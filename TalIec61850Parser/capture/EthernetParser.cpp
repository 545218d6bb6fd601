#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/capture/FrameIndex.hpp>
#include <TalIec61850Parser/capture/FrameVerdict.hpp>
#include <TalIec61850Parser/capture/LinkLayerFilter.hpp>
#include <TalIec61850Parser/wire/Ethernet.hpp>
#include <TalIec61850Parser/wire/Hex.hpp>

namespace TalIec61850Parser {

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
    return detail::takeLinkLayer(detail::toLinkLayer(header), record, filters);
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
