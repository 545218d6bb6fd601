#pragma once

#include <cstddef>
#include <string>

#include "tools/terminal/TextForm.hpp"
#include "tools/terminal/TimeScale.hpp"

namespace TalIec61850Tools {

/// The time axis below a picture: one line, in which a mark is in the column of each tick, and the
/// time after it, UTC. Below the labels of the picture is the day; at midnight the next one.
/// @param labelColumns  what the labels of the picture take; the scale begins after them
[[nodiscard]] std::string timeAxisLine(TimeScale const& scale, std::size_t labelColumns,
                                       TextForm const& form);

}  // namespace TalIec61850Tools
