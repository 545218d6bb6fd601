#pragma once

#include <TalIec61850Scl/model/StationDescription.hpp>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/selection/ControlBlockCriteria.hpp"

namespace TalIec61850Tools {

/// The control blocks that are wanted, in the order of the description.
/// @return valid as long as the description
[[nodiscard]] std::vector<TalIec61850Scl::ControlBlock const*> wantedBlocks(
    TalIec61850Scl::StationDescription const& station, ControlBlockCriteria const& criteria);

/// Says on standard error that no control block is wanted, and which IEDs there are.
void noteNoBlocks(CommandRun const& run, TalIec61850Scl::StationDescription const& station,
                  ControlBlockCriteria const& criteria);

}  // namespace TalIec61850Tools
