#pragma once

// Internal: EthernetParser::parsePacketSimple, on octets in place.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>

namespace TalIec61850Parser::detail {

/// EthernetParser::parsePacketSimple. Without filter criteria it allocates nothing.
[[nodiscard]] bool judgeFrame(wire::Octets frame, Filter const& filter);

}  // namespace TalIec61850Parser::detail
