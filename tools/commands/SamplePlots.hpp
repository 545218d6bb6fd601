#pragma once

#include "tools/commands/CommandRun.hpp"
#include "tools/options/ExitStatus.hpp"
#include "tools/options/SampleOptions.hpp"

namespace TalIec61850Tools {

/// Draws the samples of streams into the output, one stream below the other: what `samples --plot`
/// does.
/// @param isScaled  in the units of the layout or of the description; those of SampleChoice::scales
///                  count in any case
/// @throws UsageError  no stream has any of the channels
[[nodiscard]] ExitStatus plotSamples(CommandRun& run, SampleChoice const& choice, bool isScaled);

}  // namespace TalIec61850Tools
