#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

// Comma-separated values, quoted where RFC 4180 asks for it.

/// The names of the fields, and a line end.
[[nodiscard]] std::string toCsvHeading(std::vector<std::string_view> const& names);

/// One row and its line end. Texts pass `escapeText`, so that every row is one line; null is an
/// empty cell, an empty text is "", and what is nested is JSON.
[[nodiscard]] std::string toCsvLine(Fields const& fields);

}  // namespace TalIec61850Tools
