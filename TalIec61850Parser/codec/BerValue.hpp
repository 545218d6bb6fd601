#pragma once

// Internal: the integers and texts in the value of a BER element, read in place.

#include <TalIec61850Parser/codec/BerReader.hpp>
#include <algorithm>
#include <cstdint>
#include <string>

namespace TalIec61850Parser::detail {

/// The first octets of `value`, as many as there are and the integer holds, most significant first.
template <typename Integer>
[[nodiscard]] constexpr Integer readBigEndian(Octets value) noexcept {
    Integer result = 0;
    for (std::uint8_t const octet : value.first(std::min(value.size(), sizeof(Integer)))) {
        result = static_cast<Integer>((result << 8U) | octet);
    }
    return result;
}

[[nodiscard]] constexpr std::uint32_t toUint32(Octets value) noexcept {
    return readBigEndian<std::uint32_t>(value);
}

/// Deliberate: a single octet reads as 0.
[[nodiscard]] constexpr std::uint16_t toUint16(Octets value) noexcept {
    return value.size() < 2 ? std::uint16_t{0} : readBigEndian<std::uint16_t>(value);
}

[[nodiscard]] constexpr std::uint8_t toUint8(Octets value) noexcept {
    return value.empty() ? std::uint8_t{0} : value.front();
}

// Texts; what each gives is said at the operation of Asn1Parser that it stands behind.

[[nodiscard]] std::string toHexDump(Octets value);            ///< formatBytes
[[nodiscard]] std::string toText(Octets value);               ///< bytesToString
[[nodiscard]] std::string gooseTimeToDateTime(Octets value);  ///< convertGooseTimestampToDateTime
[[nodiscard]] std::string timestampToDecimal(Octets value);   ///< convertBytesToTimestamp
[[nodiscard]] std::string referenceTimeToDateTime(Octets value);  ///< convertRefrTmToDateTime

}  // namespace TalIec61850Parser::detail
