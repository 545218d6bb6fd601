#pragma once

// Internal: the values of a data set that hold no others.

#include <TalIec61850Analysis/packet/DataView.hpp>

namespace TalIec61850Analysis {

/// Makes the value of its kind of the value octets of an element; octets that make none stay what
/// they are, with a fault. Arrays and structures are not read.
/// @param view  has its kind and no fault; its value is set
void readContent(Octets octets, DataView& view) noexcept;

}  // namespace TalIec61850Analysis
