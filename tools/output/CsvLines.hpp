#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

// Comma-separated values, quoted as RFC 4180 requires.

/// The names of the fields, and a line end.
[[nodiscard]] std::string toCsvHeading(std::vector<std::string_view> const& names);

/// One row and its line end. Texts pass `escapeText`, so that every row is one line; null is an
/// empty cell, an empty text is "", and a nested value is JSON.
[[nodiscard]] std::string toCsvLine(Fields const& fields);

}  // namespace TalIec61850Tools
