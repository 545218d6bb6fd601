#pragma once

#include "tools/commands/Action.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds `plot`, which draws a window of time as an SVG picture for documents.
/// @param chosen  set when the command line asks for it
void addPlotCommand(ProgramDefinition& program, Action& chosen);

}  // namespace TalIec61850Tools
