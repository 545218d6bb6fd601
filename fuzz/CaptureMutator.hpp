#pragma once

#include "fuzz/BerMutator.hpp"
#include "support/Bytes.hpp"

namespace TalFuzz {

/// Changes one thing about a classic capture: a frame in one of its records, the order or number of
/// records, a record's header, the file's variant, or where the file ends. Sizes of records that
/// are changed are kept true, but for headers made to lie.
TalTest::Bytes mutatedCapture(TalTest::Bytes const& capture, Random& random);

/// Records of two captures, in a file of the first one's variant.
TalTest::Bytes crossedCaptures(TalTest::Bytes const& a, TalTest::Bytes const& b, Random& random);

}  // namespace TalFuzz
