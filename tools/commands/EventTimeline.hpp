#pragma once

#include "tools/commands/CommandRun.hpp"
#include "tools/options/EventsOptions.hpp"
#include "tools/options/ExitStatus.hpp"

namespace TalIec61850Tools {

/// Draws the members of GOOSE streams over time into the output, one stream below the other: what
/// `events --timeline` does.
[[nodiscard]] ExitStatus drawTimeline(CommandRun& run, EventsOptions const& options);

}  // namespace TalIec61850Tools
