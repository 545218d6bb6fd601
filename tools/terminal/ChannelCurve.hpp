#pragma once

#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <cstddef>
#include <vector>

#include "tools/render/ValueRange.hpp"
#include "tools/selection/ChannelMeaning.hpp"
#include "tools/terminal/TimeScale.hpp"

namespace TalIec61850Tools {

/// The values of a channel in each column of dots, scaled. Where the picture has the samples, lines
/// between them are in it, too, but not over missing ones, nor from run to run; else the columns of
/// its finest level are shared out, which should be at least twice as many.
/// @param channel  its place in the picture
/// @param dots     the columns
/// @return one for each column; empty where nothing came
[[nodiscard]] std::vector<ValueRange> curveOf(TalIec61850Analysis::StreamPicture const& picture,
                                              std::size_t channel, ChannelScale const& scale,
                                              TimeScale const& dots);

}  // namespace TalIec61850Tools
