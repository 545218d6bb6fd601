#include <TalIec61850Parser/frame/Admission.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>

namespace TalIec61850Parser {

bool SvParser::parsePacket(std::vector<std::uint8_t> const& data, std::size_t offset,
                           PcapPacketHeader const& header, std::uint64_t position, Sv& sv,
                           Package& package, Filter const& filter) {
    auto const application = wire::readApplicationHeader(data, offset);
    return application && detail::admitApplicationHeader(*application, sv, filter.svFilters) &&
           detail::walkSavPdu(application->pdu(), {},
                              {.record = sv,
                               .filters = filter.svFilters,
                               .package = package,
                               .time = {header.tsSec, header.tsUsec},
                               .fileOffset = position + offset + wire::ApplicationHeader::kSize});
}

bool SvParser::_parseAsn1Structure(std::vector<std::uint8_t> const& buffer, int depth,
                                   std::size_t /*start*/, std::size_t filePosition,
                                   PcapPacketHeader const& header, Sv& sv, Package& package,
                                   Filter const& filter, bool inAsdu) {
    return detail::walkSavPdu(buffer, {.depth = depth, .inAsdu = inAsdu},
                              {.record = sv,
                               .filters = filter.svFilters,
                               .package = package,
                               .time = {header.tsSec, header.tsUsec},
                               .fileOffset = filePosition});
}

bool SvParser::_processNestedStructure(std::vector<std::uint8_t> const& buffer, int depth,
                                       std::size_t start, std::size_t filePosition,
                                       PcapPacketHeader const& header, Sv& sv, Package& package,
                                       Filter const& filter, bool inAsdu) {
    return _parseAsn1Structure(buffer, depth, start, filePosition, header, sv, package, filter,
                               inAsdu);
}

}  // namespace TalIec61850Parser
