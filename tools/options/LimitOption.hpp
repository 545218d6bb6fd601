#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// Adds --limit.
/// @param limit  the most rows to write; as it is where the option is not given
/// @param group  the heading of the option in the help
/// @param what   is written, in the plural
void addLimitOption(CommandDefinition& command, std::optional<std::uint64_t>& limit,
                    std::string const& group = "OPTIONS", std::string const& what = "rows");

}  // namespace TalIec61850Tools
