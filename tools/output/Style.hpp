#pragma once

#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// The text in bold, for a terminal.
/// @param inColour  false gives the text as it is
[[nodiscard]] std::string emphasise(std::string_view text, bool inColour);

/// Whether output is to have colours.
/// @param wish        auto, always or never; auto asks the environment too: NO_COLOR, when not
///                    empty, and a dumb terminal forbid them
/// @param isTerminal  whether the output goes to one
[[nodiscard]] bool wantsColour(std::string_view wish, bool isTerminal);

}  // namespace TalIec61850Tools
