#pragma once

// Internal: the values of a data set that hold no others.

#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/Reading.hpp>

namespace TalIec61850Analysis {

/// Makes the value of its kind of the value octets of an element; octets that make none stay what
/// they are. Arrays and structures are not read.
[[nodiscard]] Reading<DataView::Content> readContent(DataKind kind, Octets octets) noexcept;

}  // namespace TalIec61850Analysis
