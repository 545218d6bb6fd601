#pragma once

// Internal: what the index has of a stream, compared with its description.

#include <TalIec61850Scl/match/DescribedStream.hpp>
#include <TalIec61850Scl/match/DifferenceSet.hpp>

namespace TalIec61850Scl::detail {

/// Compares what tells the stream from others: addresses, VLAN, APPID, name.
void compareKey(DescribedStream const& described, DifferenceSet& differences);

/// Compares the attributes of all packets: goID, datSet, confRev, ASDUs in a frame.
///
/// A message without goID has its gocbRef for one (IEC 61850-8-1), and an ASDU need not name its
/// data set. What a snap length may have cut off is not missed.
void compareAttributes(DescribedStream const& described, DifferenceSet& differences);

}  // namespace TalIec61850Scl::detail
