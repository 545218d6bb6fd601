#pragma once

// Internal: octets as hexadecimal text.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <cstdint>
#include <string>
#include <string_view>

namespace TalIec61850Parser::wire {

inline constexpr std::string_view kLowerHexDigits = "0123456789abcdef";
inline constexpr std::string_view kUpperHexDigits = "0123456789ABCDEF";

/// Appends two digits.
inline void appendHex(std::string& text, std::uint8_t octet, std::string_view digits) {
    text += digits[octet >> 4U];
    text += digits[octet & 0x0FU];
}

/// Two lower-case digits for each octet, with nothing between them.
[[nodiscard]] std::string toHex(Octets octets);

/// Lower-case pairs of digits joined by colons, such as 01:0c:cd:01:00:01 for six octets.
[[nodiscard]] std::string toColonHex(Octets octets);

}  // namespace TalIec61850Parser::wire
