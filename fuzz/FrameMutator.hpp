#pragma once

#include "fuzz/BerMutator.hpp"
#include "support/Bytes.hpp"

namespace TalFuzz {

/// Changes one thing about a frame: its tags or trailer, its EtherType, the header of its PDU, an
/// element of the PDU, or a few octets anywhere. Most frames stay GOOSE or SV.
TalTest::Bytes mutatedFrame(TalTest::Bytes frame, Random& random);

}  // namespace TalFuzz
