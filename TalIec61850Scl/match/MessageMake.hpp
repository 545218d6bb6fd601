#pragma once

// Internal: whether two messages hold values of the same types.

#include <TalIec61850Analysis/packet/Octets.hpp>

namespace TalIec61850Scl::detail {

/// Whether members bind to both messages in the same way, whatever they are: the values are as
/// many, are nested in the same way, have the same tags, and take as many octets; numbers are in
/// the same range, bit strings have as many bits. Equal octets are seen at once.
/// @param allData, other  the octets of the values, all of them captured
[[nodiscard]] bool isSameMake(TalIec61850Analysis::Octets allData,
                              TalIec61850Analysis::Octets other);

}  // namespace TalIec61850Scl::detail
