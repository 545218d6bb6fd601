#pragma once

#include <string>
#include <vector>

#include "tools/terminal/TextForm.hpp"

namespace TalIec61850Tools {

/// What is above the picture of a stream: its name, in bold, and what there is to say, two blanks
/// between, on as many lines as that takes.
/// @param name   safe for a terminal, as what follows; a long one is cut
/// @param words  pieces that are not broken, though one that is wider than a line is cut
/// @return lines, each with its end
[[nodiscard]] std::string headLine(std::string const& name, std::vector<std::string> const& words,
                                   TextForm const& form);

}  // namespace TalIec61850Tools
