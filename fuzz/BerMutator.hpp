#pragma once

#include <random>

#include "support/Bytes.hpp"

namespace TalFuzz {

using Random = std::minstd_rand;

/// Changes octets as libFuzzer sees fit; at most twice as many come back, and a few more.
TalTest::Bytes mutatedOctets(TalTest::Bytes octets);

/// Changes one of the BER elements that `octets` hold, or one inside of them: its identifier,
/// value or place, the form or the truth of its length. The lengths around it are kept right.
TalTest::Bytes mutatedElements(TalTest::Bytes const& octets, Random& random, unsigned depth = 0);

}  // namespace TalFuzz
