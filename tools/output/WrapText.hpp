#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// The width of paragraphs in a help, in octets: they fit 80 columns in the manual page too, which
/// indents them.
inline constexpr std::size_t kHelpColumns = 72;

/// Breaks a paragraph into lines. A word that is longer than a line has one for itself.
/// @param text     words separated by blanks or line ends
/// @param columns  the most octets of a line
/// @return lines with a line end between them, none after the last
[[nodiscard]] std::string wrapText(std::string_view text, std::size_t columns);

/// A paragraph of a help, with its line end.
[[nodiscard]] std::string paragraph(std::string_view text);

}  // namespace TalIec61850Tools
