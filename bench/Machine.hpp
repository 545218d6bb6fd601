#pragma once

#include "bench/Settings.hpp"

namespace TalBench {

/// Prints, as a Markdown list, what the numbers belong to: processor, kernel, compiler, versions,
/// rounds.
void printMachine(Settings const& settings);

}  // namespace TalBench
