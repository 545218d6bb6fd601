#pragma once

// Internal: what GooseParser and GooseParserSimple do, on octets in place.

#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/frame/PduWalk.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <cstddef>
#include <vector>

namespace TalIec61850Parser::detail {

using GooseFilters = std::vector<GooseIdentifer>;
using GooseWalk = PduWalk<Goose, GooseIdentifer>;

/// GooseParser::_parseAsn1Structure.
[[nodiscard]] bool walkGoosePdu(Octets pdu, WalkLevel level, GooseWalk const& walk);

/// Whether walkGoosePdu would pass over octets after a goosePdu, whatever the filter.
/// @param tail  see passesOverTail
[[nodiscard]] bool walkGoosePduPassesOver(Octets tail);

/// GooseParserSimple::parsePacket.
[[nodiscard]] bool readGooseIdentity(Octets frame, std::size_t index, Goose& goose,
                                     GooseFilters const& filters);

/// GooseParserSimple::_parseAsn1Structure.
[[nodiscard]] bool walkGooseIdentity(Octets pdu, WalkLevel level, Goose& goose,
                                     GooseFilters const& filters);

}  // namespace TalIec61850Parser::detail
