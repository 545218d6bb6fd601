#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// The width of the paragraph about exit statuses, in octets.
constexpr std::size_t kStatusColumns = 102;

/// Breaks a paragraph into lines. A word that is longer than a line has one for itself.
/// @param text     words separated by blanks or line ends
/// @param columns  the most octets of a line
/// @return lines with a line end between them, none after the last
[[nodiscard]] std::string wrapText(std::string_view text, std::size_t columns);

}  // namespace TalIec61850Tools
