#pragma once

// Internal: EthernetParser::parsePacketSimple, on octets in place.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>

namespace TalIec61850Parser::detail {

using wire::Octets;

/// EthernetParser::parsePacketSimple. Without filter criteria it allocates nothing.
[[nodiscard]] bool judgeFrame(Octets frame, Filter const& filter);

}  // namespace TalIec61850Parser::detail
