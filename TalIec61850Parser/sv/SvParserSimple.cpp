#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <TalIec61850Parser/sv/SvParserSimple.hpp>

namespace TalIec61850Parser {

bool SvParserSimple::parsePacket(std::vector<std::uint8_t> const& data, std::size_t offset, Sv& sv,
                                 Filter const& filter) {
    return detail::readSvIdentity(data, offset, sv, filter.svFilters);
}

bool SvParserSimple::_parseAsn1Structure(std::vector<std::uint8_t> const& buffer, int depth,
                                         std::size_t /*start*/, Sv& sv, Filter const& filter,
                                         bool inAsdu) {
    return detail::walkSvIdentity(buffer, {.depth = depth, .inAsdu = inAsdu}, sv, filter.svFilters);
}

bool SvParserSimple::_processNestedStructure(std::vector<std::uint8_t> const& buffer, int depth,
                                             std::size_t start, Sv& sv, Filter const& filter,
                                             bool inAsdu) {
    return _parseAsn1Structure(buffer, depth, start, sv, filter, inAsdu);
}

}  // namespace TalIec61850Parser
