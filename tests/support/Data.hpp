#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "support/Bytes.hpp"

// The values a GOOSE data set is made of: the MMS Data choices (ISO 9506-2), one element each.

namespace TalTest {

/// The eight octets of a UtcTime: seconds since 1970, the fraction in units of 2^-24 s, quality.
[[nodiscard]] Bytes utcTime(std::uint32_t seconds, std::uint32_t fraction24 = 0,
                            std::uint8_t quality = 0x0A);

/// 83: a boolean; true is FF.
[[nodiscard]] Bytes dataBoolean(bool value);

/// 84: a bit string; `unusedBits` of the last octet do not count.
[[nodiscard]] Bytes dataBitString(Bytes const& bits, std::uint8_t unusedBits = 0);

/// 84: the 13 bits of a Quality, here in the upper bits of the two octets (0x0000 is good).
[[nodiscard]] Bytes dataQuality(std::uint16_t bits = 0);

/// 85: an integer, in as few octets as it takes.
[[nodiscard]] Bytes dataInteger(std::int64_t value);

/// 86: an unsigned, in as few octets as it takes.
[[nodiscard]] Bytes dataUnsigned(std::uint64_t value);

/// 87: a floating-point number, single precision: the exponent's width (8) and IEEE 754.
[[nodiscard]] Bytes dataFloat(float value);

/// 87: a floating-point number, double precision: the exponent's width (11) and IEEE 754.
[[nodiscard]] Bytes dataDouble(double value);

/// 89: an octet string.
[[nodiscard]] Bytes dataOctetString(Bytes const& value);

/// 8A: a visible string.
[[nodiscard]] Bytes dataVisibleString(std::string_view value);

/// 8C: a time of day in milliseconds, and the days since 1984 where they are told.
[[nodiscard]] Bytes dataBinaryTime(std::uint32_t milliseconds,
                                   std::optional<std::uint16_t> days = {});

/// 8D: a binary-coded number, here below 128.
[[nodiscard]] Bytes dataBcd(std::uint8_t value);

/// 8E: an array of booleans; `unusedBits` of the last octet do not count.
[[nodiscard]] Bytes dataBooleanArray(Bytes const& bits, std::uint8_t unusedBits = 0);

/// 8F: an object identifier, as its content is encoded.
[[nodiscard]] Bytes dataObjectId(Bytes const& content);

/// 90: a string in UTF-8.
[[nodiscard]] Bytes dataMmsString(std::string_view value);

/// 91: a time stamp; the arguments are those of utcTime().
[[nodiscard]] Bytes dataUtcTime(std::uint32_t seconds, std::uint32_t fraction24 = 0,
                                std::uint8_t quality = 0x0A);

/// A2: a structure.
[[nodiscard]] Bytes dataStructure(std::initializer_list<Part> members);

/// A1: an array.
[[nodiscard]] Bytes dataArray(std::initializer_list<Part> elements);

}  // namespace TalTest
