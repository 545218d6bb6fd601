#pragma once

#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Lets the help of the program and of its commands break lines, so that it fits 80 columns.
/// @param program  has no commands yet: they take the format of the program
void fitHelp(CLI::App& program);

}  // namespace TalIec61850Tools
