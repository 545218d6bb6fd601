#pragma once

#include <string>

#include "tools/inspect/GoosePacket.hpp"
#include "tools/inspect/SvPacket.hpp"

namespace TalIec61850Tools {

// Packets for people: one value a line, what it holds indented below it, each line ended. What a
// packet lacks is left out. Safe for a terminal.

[[nodiscard]] std::string toText(GoosePacket const& packet);
[[nodiscard]] std::string toText(SvPacket const& packet);

}  // namespace TalIec61850Tools
