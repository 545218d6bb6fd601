#pragma once

#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// The text in bold, for a terminal.
/// @param inColour  false leaves the text unchanged
[[nodiscard]] std::string emphasise(std::string_view text, bool inColour);

/// How a part of a picture stands out.
enum class Paint {
    plain,
    faint,    ///< less than the rest
    warning,  ///< as a severity of warning
};

/// The text painted so, for a terminal.
[[nodiscard]] std::string painted(std::string_view text, Paint paint);

/// A severity in its colour, for a terminal: error in red, warning in yellow.
[[nodiscard]] std::string paintSeverity(std::string_view severity);

/// A result of comparing with a description in its colour: missing and differs in red, unexpected
/// in yellow.
[[nodiscard]] std::string paintResult(std::string_view result);

/// Whether output has colours.
/// @param wish        auto, always or never; with auto, the environment forbids them by a NO_COLOR
///                    that is not empty, and by a dumb terminal
/// @param isTerminal  whether the output goes to one
[[nodiscard]] bool wantsColour(std::string_view wish, bool isTerminal);

}  // namespace TalIec61850Tools
