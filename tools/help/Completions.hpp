#pragma once

#include <string>

#include "tools/help/ProgramDescription.hpp"

namespace TalIec61850Tools {

// Scripts that have a shell complete the command lines of a program: commands, options, the values
// that an option may have, and files elsewhere.

[[nodiscard]] std::string bashCompletion(ProgramDescription const& program);
[[nodiscard]] std::string zshCompletion(ProgramDescription const& program);
[[nodiscard]] std::string fishCompletion(ProgramDescription const& program);

}  // namespace TalIec61850Tools
