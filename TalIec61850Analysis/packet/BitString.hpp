#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// A string of bits; the first is the highest bit of the first octet.
/// @tparam Storage  Octets or OctetString
template <typename Storage>
struct BasicBitString {
    /// The bits, eight in each octet.
    Storage octets;
    /// Bits of the last octet that do not count, 0 to 7.
    std::uint8_t unusedBits = 0;

    /// How many bits there are.
    [[nodiscard]] std::size_t size() const { return 8 * octets.size() - unusedBits; }
    /// @param index  below size()
    [[nodiscard]] bool operator[](std::size_t index) const {
        return (octets[index / 8] >> (7 - index % 8) & 1U) != 0;
    }

    /// Member by member.
    friend bool operator==(BasicBitString const&, BasicBitString const&) = default;
};

/// A string of bits in a frame.
using BitStringView = BasicBitString<Octets>;
/// A string of bits with octets of its own.
using BitString = BasicBitString<OctetString>;

/// Reads the value octets of a BIT STRING, the first of which counts the bits that are not used;
/// nothing where it is missing, above 7, or counts bits that are not there.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<BitStringView> readBitString(
    Octets octets) noexcept;

/// A copy with octets of its own.
[[nodiscard]] inline BitString toOwned(BitStringView const& bits) {
    return {.octets = toOwned(bits.octets), .unusedBits = bits.unusedBits};
}

/// @param bits  must outlive the view
[[nodiscard]] inline BitStringView toView(BitString const& bits) noexcept {
    return {.octets = bits.octets, .unusedBits = bits.unusedBits};
}

}  // namespace TalIec61850Analysis
