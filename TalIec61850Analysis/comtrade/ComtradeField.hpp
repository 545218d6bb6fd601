#pragma once

// Internal: texts and numbers as fields of a configuration file.

#include <cstddef>
#include <string>
#include <string_view>

namespace TalIec61850Analysis::detail {

/// A text as a field: micro, degree, square and cube become `u`, `deg`, `2` and `3`, and commas,
/// control characters, and each other character that is not ASCII `_`; blanks at its ends are left
/// out, as readers do.
/// @param limit  how many characters the field may have
[[nodiscard]] std::string comtradeField(std::string_view text, std::size_t limit);

/// A number, in up to 24 characters, that reads back as the same number. No exponent where the
/// digits fit without one.
/// @param number  a finite one
[[nodiscard]] std::string comtradeField(double number);

}  // namespace TalIec61850Analysis::detail
