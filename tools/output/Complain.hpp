#pragma once

#include <string_view>

namespace TalIec61850Tools {

/// Writes "tal-iec61850: ", `text` and a line end to standard error. Allocates nothing, so that it
/// can also report that memory ran out.
/// @param text  one line, safe for a terminal (see escapeText)
void complain(std::string_view text) noexcept;

}  // namespace TalIec61850Tools
