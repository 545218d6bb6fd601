#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "tools/inspect/OctetString.hpp"

namespace TalIec61850Tools {

/// A string of bits; the first is the highest bit of the first octet.
struct BitString {
    OctetString octets;
    /// Bits of the last octet that do not count, 0 to 7.
    std::uint8_t unusedBits = 0;

    [[nodiscard]] std::size_t size() const { return 8 * octets.size() - unusedBits; }
    [[nodiscard]] bool operator[](std::size_t index) const {
        return (octets[index / 8] >> (7 - index % 8) & 1U) != 0;
    }

    friend bool operator==(BitString const&, BitString const&) = default;
};

/// Reads the value octets of a BIT STRING, the first of which counts the bits that are not used;
/// nothing where it is missing, above 7, or counts bits that are not there.
[[nodiscard]] std::optional<BitString> readBitString(OctetString const& octets);

}  // namespace TalIec61850Tools
