#pragma once

#include <string_view>

#include "tools/inspect/Fault.hpp"

namespace TalIec61850Tools {

/// The fault in a few words, such as "runs past the captured octets".
[[nodiscard]] std::string_view toText(FaultKind kind);

}  // namespace TalIec61850Tools
