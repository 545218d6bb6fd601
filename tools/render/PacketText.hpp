#pragma once

#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <string>

#include "tools/names/MemberNames.hpp"
#include "tools/render/SampleText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::GoosePacket;
using TalIec61850Analysis::SvPacket;

// Packets for people: one value a line, what it holds indented below it, each line ended. What a
// packet lacks is left out. Safe for a terminal.

/// @param names  of its values
[[nodiscard]] std::string toText(GoosePacket const& packet, MemberNames const& names = {});
/// @param layouts   see AsduLayouts
/// @param meanings  see AsduMeanings
[[nodiscard]] std::string toText(SvPacket const& packet, AsduLayouts const& layouts = {},
                                 AsduMeanings const& meanings = {});

}  // namespace TalIec61850Tools
