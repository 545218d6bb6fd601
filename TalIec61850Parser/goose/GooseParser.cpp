#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>

namespace TalIec61850Parser {

bool GooseParser::parsePacket(std::vector<std::uint8_t> const& data, std::size_t offset,
                              PcapPacketHeader const& header, std::uint64_t position, Goose& goose,
                              Package& package, Filter const& filter) {
    return detail::readGooseFrame(data, offset, header, position, goose, package, filter);
}

bool GooseParser::_parseAsn1Structure(std::vector<std::uint8_t> const& buffer, int depth,
                                      std::size_t /*start*/, std::size_t filePosition,
                                      PcapPacketHeader const& header, Goose& goose,
                                      Package& package, Filter const& filter) {
    return detail::walkGoosePdu(buffer, {.depth = depth, .inAsdu = false}, filePosition, header,
                                goose, package, filter);
}

bool GooseParser::_processNestedStructure(std::vector<std::uint8_t> const& buffer, int depth,
                                          std::size_t start, std::size_t filePosition,
                                          PcapPacketHeader const& header, Goose& goose,
                                          Package& package, Filter const& filter) {
    return _parseAsn1Structure(buffer, depth, start, filePosition, header, goose, package, filter);
}

}  // namespace TalIec61850Parser
