#pragma once

// Internal: how often messages come, compared with MaxTime.

#include <TalIec61850Scl/match/DescribedStream.hpp>
#include <TalIec61850Scl/match/DifferenceSet.hpp>

namespace TalIec61850Scl::detail {

/// Looks for the longest interval between two messages of a GOOSE stream, and from the last one to
/// the end of the captures. It is a difference where it is beyond MaxTime by more than 10 % and
/// more than 1 ms.
///
/// Copies and duplicates are no messages of their own. Intervals in which none of the files that
/// have the stream was captured do not count. At the end, files that follow these count too.
void compareIntervals(DescribedStream const& described, DifferenceSet& differences);

}  // namespace TalIec61850Scl::detail
