#pragma once

#include <cstddef>

#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds --jobs.
/// @param jobs  how many files are read at a time; as it is where the option is not given
void addJobsOption(CommandDefinition& command, std::size_t& jobs);

}  // namespace TalIec61850Tools
