#pragma once

// Internal: what SvParser and SvParserSimple do, on octets in place.

#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/frame/PduWalk.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstddef>
#include <vector>

namespace TalIec61850Parser::detail {

using SvFilters = std::vector<SvIdentifer>;
using SvWalk = PduWalk<Sv, SvIdentifer>;

/// SvParser::_parseAsn1Structure. smpCnt is the number that the trace is told to read again.
[[nodiscard]] bool walkSavPdu(Octets pdu, WalkLevel level, SvWalk const& walk);

/// Whether walkSavPdu would pass over octets after a savPdu, whatever the filter.
/// @param tail  see passesOverTail
[[nodiscard]] bool walkSavPduPassesOver(Octets tail);

/// SvParserSimple::parsePacket.
[[nodiscard]] bool readSvIdentity(Octets frame, std::size_t index, Sv& sv,
                                  SvFilters const& filters);

/// SvParserSimple::_parseAsn1Structure.
[[nodiscard]] bool walkSvIdentity(Octets pdu, WalkLevel level, Sv& sv, SvFilters const& filters);

}  // namespace TalIec61850Parser::detail
