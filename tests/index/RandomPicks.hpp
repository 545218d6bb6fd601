#pragma once

// Picks for the inside of a running RapidCheck generator. Each is uniform, whatever size
// RapidCheck is at.

#include <rapidcheck.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "support/Bytes.hpp"

namespace TalTest {

/// A number below `bound`, which is not 0.
inline unsigned below(unsigned bound) {
    return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(0U, bound));
}

/// True once in `count` times; counterexamples shrink to false.
inline bool oneIn(unsigned count) { return below(count) == count - 1; }

inline std::uint8_t anyOctet() { return static_cast<std::uint8_t>(below(256)); }

template <typename T, std::size_t N>
T const& oneOf(std::array<T, N> const& pool) {
    return pool[below(N)];
}

/// Fewer than `bound` octets.
inline Bytes anyOctets(unsigned bound) {
    Bytes octets(below(bound));
    for (std::uint8_t& octet : octets) octet = anyOctet();
    return octets;
}

}  // namespace TalTest
