#pragma once

#include <string>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// One JSON object and its line end. Names are not altered, save that octets which are no UTF-8
/// become U+FFFD. The text itself is ASCII.
[[nodiscard]] std::string toJsonLine(Fields const& fields);

}  // namespace TalIec61850Tools
