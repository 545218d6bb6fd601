#pragma once

#include <string>
#include <string_view>

#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

/// About how wide a text is in a proportional font without serifs. Who draws the picture may have
/// another font: places are left with some room.
/// @param escaped  a result of `escapeText`
/// @param size     of the font, in pixels
/// @return in pixels
[[nodiscard]] double textWidth(std::string_view escaped, double size);

/// A text that is cut, with "..." where characters are left out, so that it is no wider than this.
/// @param escaped  a result of `escapeText`
[[nodiscard]] std::string fitText(std::string_view escaped, double size, double width,
                                  Cut cut = Cut::middle);

}  // namespace TalIec61850Tools
