#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// Where a text that is too wide loses characters.
enum class Cut { start, middle, end };

/// Makes a text from outside (a name in a frame, a path) safe to show. Control characters and
/// others that are not printed become \n, \t, \x1b, \u202e and the like, octets that are no UTF-8
/// become \xff, a backslash is doubled. The rest is kept, so the result is valid UTF-8.
[[nodiscard]] std::string escapeText(std::string_view text);

/// The columns of a text on a terminal: one for each character, two for wide ones, as of Chinese,
/// none for accents of their own.
/// @param escaped  a result of `escapeText`
[[nodiscard]] std::size_t countColumns(std::string_view escaped);

/// A text that is cut so that it takes no more than so many columns.
/// @param escaped   a result of `escapeText`
/// @param cut       where characters are left out
/// @param ellipsis  what is written there; not where it takes more than half of the columns
[[nodiscard]] std::string shorten(std::string_view escaped, std::size_t maxColumns, Cut cut,
                                  std::string_view ellipsis);

/// The last characters of a text, after "..." if some are left out. Characters beyond ASCII count
/// as two columns, so that the result never takes more than `maxColumns`.
/// @param escaped  a result of `escapeText`
[[nodiscard]] std::string keepEnd(std::string_view escaped, std::size_t maxColumns);

}  // namespace TalIec61850Tools
