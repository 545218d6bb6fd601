#pragma once

#include "tools/options/CheckOptions.hpp"
#include "tools/options/ExitStatus.hpp"

namespace TalIec61850Tools {

/// Tells what goes wrong in captures while they are written, as it happens.
/// @throws UsageError  options do not go with that
[[nodiscard]] ExitStatus followCheck(CheckOptions const& options);

}  // namespace TalIec61850Tools
