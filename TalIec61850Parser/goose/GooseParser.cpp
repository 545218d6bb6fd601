#include <TalIec61850Parser/frame/Admission.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>

namespace TalIec61850Parser {

bool GooseParser::parsePacket(std::vector<std::uint8_t> const& data, std::size_t offset,
                              PcapPacketHeader const& header, std::uint64_t position, Goose& goose,
                              Package& package, Filter const& filter) {
    auto const application = wire::readApplicationHeader(data, offset);
    return application &&
           detail::admitApplicationHeader(*application, goose, filter.gooseFilters) &&
           detail::walkGoosePdu(application->pdu(), {},
                                {.record = goose,
                                 .filters = filter.gooseFilters,
                                 .package = package,
                                 .time = {header.tsSec, header.tsUsec},
                                 .fileOffset = position + offset + wire::ApplicationHeader::kSize});
}

bool GooseParser::_parseAsn1Structure(std::vector<std::uint8_t> const& buffer, int depth,
                                      std::size_t /*start*/, std::size_t filePosition,
                                      PcapPacketHeader const& header, Goose& goose,
                                      Package& package, Filter const& filter) {
    return detail::walkGoosePdu(buffer, {.depth = depth, .inAsdu = false},
                                {.record = goose,
                                 .filters = filter.gooseFilters,
                                 .package = package,
                                 .time = {header.tsSec, header.tsUsec},
                                 .fileOffset = filePosition});
}

bool GooseParser::_processNestedStructure(std::vector<std::uint8_t> const& buffer, int depth,
                                          std::size_t start, std::size_t filePosition,
                                          PcapPacketHeader const& header, Goose& goose,
                                          Package& package, Filter const& filter) {
    return _parseAsn1Structure(buffer, depth, start, filePosition, header, goose, package, filter);
}

}  // namespace TalIec61850Parser
