#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/goose/GooseParserSimple.hpp>

namespace TalIec61850Parser {

bool GooseParserSimple::parsePacket(std::vector<std::uint8_t> const& data, std::size_t offset,
                                    Goose& goose, Filter const& filter) {
    return detail::readGooseIdentity(data, offset, goose, filter.gooseFilters);
}

bool GooseParserSimple::_parseAsn1Structure(std::vector<std::uint8_t> const& buffer, int depth,
                                            std::size_t /*start*/, Goose& goose,
                                            Filter const& filter) {
    return detail::walkGooseIdentity(buffer, {.depth = depth, .inAsdu = false}, goose,
                                     filter.gooseFilters);
}

bool GooseParserSimple::_processNestedStructure(std::vector<std::uint8_t> const& buffer, int depth,
                                                std::size_t start, Goose& goose,
                                                Filter const& filter) {
    return _parseAsn1Structure(buffer, depth, start, goose, filter);
}

}  // namespace TalIec61850Parser
