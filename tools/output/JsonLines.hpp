#pragma once

#include <string>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// One JSON object and its line end, in ASCII. Names are not altered, except that octets that are
/// no UTF-8 become U+FFFD.
[[nodiscard]] std::string toJsonLine(Fields const& fields);

}  // namespace TalIec61850Tools
