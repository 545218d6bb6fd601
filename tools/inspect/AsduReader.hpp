#pragma once

// Internal: how an element becomes an ASDU.

#include "tools/inspect/AsduContent.hpp"
#include "tools/inspect/ElementReader.hpp"
#include "tools/inspect/Fault.hpp"

namespace TalIec61850Tools {

/// Reads the fields of an ASDU, as many as were captured.
/// @param faults  takes what is wrong with them
[[nodiscard]] AsduContent readAsdu(Element&& element, Faults& faults);

}  // namespace TalIec61850Tools
