#pragma once

// Internal: how often an SV stream is sampled, compared with its description.

#include <TalIec61850Scl/match/DescribedStream.hpp>
#include <TalIec61850Scl/match/DifferenceSet.hpp>

namespace TalIec61850Scl::detail {

/// Compares smpRate: first the element of all packets, then the rate that smpCnt and arrival
/// show, within 1 %. Samples of a period fit at 50 and at 60 Hz.
///
/// smpRate without smpMod is taken in the unit of the description. Some dozen samples have to show
/// the rate where smpCnt begins again, else some hundred.
/// @throws std::system_error  a capture cannot be read again
void compareRate(DescribedStream const& described, DifferenceSet& differences);

}  // namespace TalIec61850Scl::detail
