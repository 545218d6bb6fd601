#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds --limit.
/// @param limit  the most rows to write; as it is where the option is not given
/// @param group  the heading of the option in the help
void addLimitOption(CommandDefinition& command, std::optional<std::uint64_t>& limit,
                    std::string const& group = "OPTIONS");

}  // namespace TalIec61850Tools
