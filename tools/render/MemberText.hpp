#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// The place of a value in a data set: "3", or "9.2" for the second value inside the ninth.
/// @param member  by index from 0, the outermost first
[[nodiscard]] std::string memberText(std::vector<std::uint32_t> const& member);

}  // namespace TalIec61850Tools
