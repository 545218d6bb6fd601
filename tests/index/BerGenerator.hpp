#pragma once

#include "support/Bytes.hpp"

namespace TalTest {

// For the inside of a running RapidCheck generator.

/// BER elements one after the other, as GOOSE and SV PDUs might hold them and as they might not:
/// nested, empty, indefinite, longer than there are octets, more than 50 of them.
Bytes randomElements(unsigned depth);

/// The elements inside others, sometimes dozens deep, sometimes with more to come on each level.
Bytes wrappedAtRandom(Bytes inner);

}  // namespace TalTest
