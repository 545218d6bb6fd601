#pragma once

#include <TalIec61850Scl/match/BindMembers.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <vector>

#include "tools/selection/ChannelMeaning.hpp"

namespace TalIec61850Tools {

/// What the channels of samples mean by their description: name, unit, scale, the logical node, and
/// the phase where a data object or the node's prefix says it. What the description leaves out of
/// samples of 9-2LE is as 9-2LE has it.
/// @return one for each channel of the binding
[[nodiscard]] std::vector<ChannelMeaning> meaningsOf(TalIec61850Scl::DataSet const& dataSet,
                                                     TalIec61850Scl::SampleBinding const& binding);

}  // namespace TalIec61850Tools
