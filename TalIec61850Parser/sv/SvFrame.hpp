#pragma once

// Internal: what SvParser and SvParserSimple do, on octets in place.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/store/Package.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Parser::detail {

/// SvParser::parsePacket.
/// @param trace  told what was passed over, unless null; `data` ends where its frame ends. smpCnt
///               is the number to read again.
[[nodiscard]] bool readSvFrame(Octets data, std::size_t offset, PcapPacketHeader const& header,
                               std::uint64_t position, Sv& sv, Package& package,
                               Filter const& filter, WalkTrace* trace = nullptr);

/// SvParser::_parseAsn1Structure.
[[nodiscard]] bool walkSavPdu(Octets pdu, WalkLevel level, std::uint64_t filePosition,
                              PcapPacketHeader const& header, Sv& sv, Package& package,
                              Filter const& filter, WalkTrace* trace = nullptr);

/// Whether walkSavPdu would pass over octets behind a savPdu, whatever the filter.
/// @param tail  see passesOverTail
[[nodiscard]] bool walkSavPduPassesOver(Octets tail);

/// SvParserSimple::parsePacket.
[[nodiscard]] bool readSvIdentity(Octets frame, std::size_t offset, Sv& sv, Filter const& filter);

/// SvParserSimple::_parseAsn1Structure.
[[nodiscard]] bool walkSvIdentity(Octets pdu, WalkLevel level, Sv& sv, Filter const& filter);

}  // namespace TalIec61850Parser::detail
