#pragma once

#include <functional>

#include "tools/options/ExitStatus.hpp"

namespace TalIec61850Tools {

/// What a command line asks for, once it has been understood; empty before.
using Action = std::function<ExitStatus()>;

}  // namespace TalIec61850Tools
