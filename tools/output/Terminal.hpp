#pragma once

#include <cstddef>
#include <string_view>

namespace TalIec61850Tools {

/// The width of the terminal that a descriptor leads to; 80 if it does not say.
[[nodiscard]] std::size_t terminalColumns(int descriptor);

/// What is written where characters of a text are left out: one character where the locale has
/// UTF-8, dots otherwise.
[[nodiscard]] std::string_view ellipsis();

}  // namespace TalIec61850Tools
