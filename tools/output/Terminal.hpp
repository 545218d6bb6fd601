#pragma once

#include <cstddef>
#include <string_view>

namespace TalIec61850Tools {

/// The width of the terminal that a descriptor leads to; if it does not say, what COLUMNS says, or
/// else 80.
[[nodiscard]] std::size_t terminalColumns(int descriptor);

/// Whether the locale has UTF-8.
[[nodiscard]] bool isUtf8Locale();

/// What is written where characters of a text are left out: one character, or dots.
[[nodiscard]] constexpr std::string_view ellipsisOf(bool isUtf8) {
    return isUtf8 ? "\u2026" : "...";
}

/// The same for the locale.
[[nodiscard]] std::string_view ellipsis();

}  // namespace TalIec61850Tools
