#pragma once

// Internal: the integers and texts in the value of a BER element, read in place.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <cstdint>
#include <string>

namespace TalIec61850Parser::detail {

using wire::Octets;
using wire::readBigEndian;

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

// Texts; what each gives is said at the operation of Asn1Parser that calls it.

[[nodiscard]] std::string toHexDump(Octets value);            ///< formatBytes
[[nodiscard]] std::string toText(Octets value);               ///< bytesToString
[[nodiscard]] std::string gooseTimeToDateTime(Octets value);  ///< convertGooseTimestampToDateTime
[[nodiscard]] std::string timestampToDecimal(Octets value);   ///< convertBytesToTimestamp
[[nodiscard]] std::string referenceTimeToDateTime(Octets value);  ///< convertRefrTmToDateTime

}  // namespace TalIec61850Parser::detail
