#pragma once

#include <span>

#include "tools/output/StandardOutput.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// Writes one JSON object per row and line, fields as `toFields` gives them. Names are not
/// altered, save that octets which are no UTF-8 become U+FFFD. The text itself is ASCII.
void writeJson(std::span<StreamRow const> rows, TextSink const& sink);

}  // namespace TalIec61850Tools
