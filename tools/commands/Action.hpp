#pragma once

#include <functional>

#include "tools/options/ExitStatus.hpp"

namespace TalIec61850Tools {

/// The command that the command line asks for; empty until it has been parsed.
using Action = std::function<ExitStatus()>;

}  // namespace TalIec61850Tools
