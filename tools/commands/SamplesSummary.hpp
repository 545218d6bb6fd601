#pragma once

#include <string>

#include "tools/commands/CommandRun.hpp"
#include "tools/options/ExitStatus.hpp"
#include "tools/options/SampleOptions.hpp"

namespace TalIec61850Tools {

/// What the help of `samples` says about --summary.
[[nodiscard]] std::string samplesSummaryNotes();

/// `samples --summary`: a row for each stream, in place of its samples.
/// @throws UsageError  there is no such column, or the choice is of samples and not of streams
[[nodiscard]] ExitStatus writeSamplesSummary(SampleChoice const& choice);

}  // namespace TalIec61850Tools
