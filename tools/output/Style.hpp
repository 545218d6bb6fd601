#pragma once

#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// The text in bold, for a terminal.
/// @param inColour  false leaves the text unchanged
[[nodiscard]] std::string emphasise(std::string_view text, bool inColour);

/// A severity in its colour, for a terminal: error in red, warning in yellow.
[[nodiscard]] std::string paintSeverity(std::string_view severity);

/// Whether output has colours.
/// @param wish        auto, always or never; with auto, the environment forbids them by a NO_COLOR
///                    that is not empty, and by a dumb terminal
/// @param isTerminal  whether the output goes to one
[[nodiscard]] bool wantsColour(std::string_view wish, bool isTerminal);

}  // namespace TalIec61850Tools
