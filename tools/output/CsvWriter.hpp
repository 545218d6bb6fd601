#pragma once

#include <span>

#include "tools/output/StandardOutput.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// Writes comma-separated values, quoted where RFC 4180 asks for it: a line with the names of
/// the fields, then one line per row, fields as `toFields` gives them. Names pass `escapeText`, so
/// that every row is one line. Null is an empty cell, an empty text is "".
void writeCsv(std::span<StreamRow const> rows, TextSink const& sink);

}  // namespace TalIec61850Tools
