#pragma once

#include "tools/commands/Action.hpp"

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// Adds the subcommands that print completions for a shell and the manual page.
/// @param program  must have all its commands when the chosen one is run, and outlive that
/// @param chosen   set while the command line is parsed, if it asks for one of them
void addHelpCommands(CLI::App& program, Action& chosen);

}  // namespace TalIec61850Tools
