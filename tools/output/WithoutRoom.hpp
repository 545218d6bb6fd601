#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// Lines that name the columns of a table that there was no room for, with their line ends.
/// @param columns  of the terminal
[[nodiscard]] std::string withoutRoomText(std::vector<std::string> const& headings,
                                          std::size_t columns);

}  // namespace TalIec61850Tools
