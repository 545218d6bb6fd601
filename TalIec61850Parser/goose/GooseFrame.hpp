#pragma once

// Internal: what GooseParser and GooseParserSimple do, on octets in place.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/codec/BerWalk.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Package.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Parser::detail {

/// GooseParser::parsePacket.
/// @param trace  told what was passed over, unless null; `data` ends where its frame ends
[[nodiscard]] bool readGooseFrame(Octets data, std::size_t offset, PcapPacketHeader const& header,
                                  std::uint64_t position, Goose& goose, Package& package,
                                  Filter const& filter, WalkTrace* trace = nullptr);

/// GooseParser::_parseAsn1Structure.
[[nodiscard]] bool walkGoosePdu(Octets pdu, WalkLevel level, std::uint64_t filePosition,
                                PcapPacketHeader const& header, Goose& goose, Package& package,
                                Filter const& filter, WalkTrace* trace = nullptr);

/// Whether walkGoosePdu would pass over octets behind a goosePdu, whatever the filter.
/// @param tail  see passesOverTail
[[nodiscard]] bool walkGoosePduPassesOver(Octets tail);

/// GooseParserSimple::parsePacket.
[[nodiscard]] bool readGooseIdentity(Octets frame, std::size_t offset, Goose& goose,
                                     Filter const& filter);

/// GooseParserSimple::_parseAsn1Structure.
[[nodiscard]] bool walkGooseIdentity(Octets pdu, WalkLevel level, Goose& goose,
                                     Filter const& filter);

}  // namespace TalIec61850Parser::detail
