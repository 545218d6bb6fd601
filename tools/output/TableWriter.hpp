#pragma once

#include <span>

#include "tools/output/StandardOutput.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// Writes a table for people: a line of headings, then one line per row, columns aligned. What a
/// stream lacks is "-", an empty name is "". Names pass `escapeText`.
void writeTable(std::span<StreamRow const> rows, TextSink const& sink);

}  // namespace TalIec61850Tools
