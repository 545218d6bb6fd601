#pragma once

#include <TalIec61850Analysis/packet/Fault.hpp>
#include <string_view>

namespace TalIec61850Tools {

using TalIec61850Analysis::Fault;
using TalIec61850Analysis::FaultKind;
using TalIec61850Analysis::Faults;

/// The fault in a few words, such as "runs past the captured octets".
[[nodiscard]] std::string_view toText(FaultKind kind);

}  // namespace TalIec61850Tools
