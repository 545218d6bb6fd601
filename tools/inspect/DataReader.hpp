#pragma once

// Internal: how the octets of allData become values.

#include <vector>

#include "tools/inspect/DataValue.hpp"
#include "tools/inspect/ElementReader.hpp"
#include "tools/inspect/Fault.hpp"

namespace TalIec61850Tools {

/// Reads the values of a data set.
/// @param faults  takes what is wrong with them
[[nodiscard]] std::vector<DataValue> readDataValues(Level level, Faults& faults);

}  // namespace TalIec61850Tools
