#pragma once

#include <vector>

#include "tools/input/CaptureFinder.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {

/// The index of each capture in the list, by its path.
/// @param captures  a path may occur twice, if its file was replaced while captures were searched
/// @return the first index of each path
[[nodiscard]] CaptureNumbers numberCaptures(std::vector<CaptureSource> const& captures);

}  // namespace TalIec61850Tools
