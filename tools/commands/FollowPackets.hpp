#pragma once

#include "tools/options/ExitStatus.hpp"
#include "tools/options/PacketOptions.hpp"

namespace TalIec61850Tools {

/// Lists the packets that captures have, and those that are added to them, as they come.
/// @throws UsageError  options do not go with that
[[nodiscard]] ExitStatus followPackets(PacketOptions const& options);

}  // namespace TalIec61850Tools
