#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// Makes a text from outside (a name in a frame, a path) safe to show: control characters and
/// others that are not printed become \n, \t, \x1b, \u202e and the like, octets that are no UTF-8
/// become \xff, a backslash is doubled. Anything else stays, so the result is valid UTF-8.
[[nodiscard]] std::string escapeText(std::string_view text);

/// The columns that a text which `escapeText` gave takes on a terminal, one for each character.
[[nodiscard]] std::size_t countColumns(std::string_view escaped);

/// The last characters of a text that `escapeText` gave, "..." for what is left out. Characters
/// beyond ASCII are taken to be two columns wide, so that the result never takes more.
/// @param maxColumns  how many columns there are
[[nodiscard]] std::string keepEnd(std::string_view escaped, std::size_t maxColumns);

}  // namespace TalIec61850Tools
