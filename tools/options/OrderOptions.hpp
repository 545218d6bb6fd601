#pragma once

#include <string>
#include <vector>

#include "tools/options/CommandDefinition.hpp"
#include "tools/selection/StreamOrder.hpp"

namespace TalIec61850Tools {

/// Adds --sort and --reverse.
/// @param order  written while the command line is parsed
/// @param keys   what rows can be ordered by
void addOrderOptions(CommandDefinition& command, StreamOrder& order,
                     std::vector<std::string> const& keys);

}  // namespace TalIec61850Tools
