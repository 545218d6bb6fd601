#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Tools {

/// What nine digits count up to, such as nanoseconds of a second.
inline constexpr std::uint32_t kBillion = 1'000'000'000;

/// Writes a number below kBillion with its leading zeros.
/// @param at  where nine characters are written, after one that stays
/// @return the end of the digits
inline char* writeNineDigits(char* at, std::uint32_t number) {
    constexpr std::ptrdiff_t kDigits = 9;
    // A leading 1 keeps the zeros.
    char const before = at[-1];
    char* const end = std::to_chars(at - 1, at + kDigits, kBillion + number).ptr;
    at[-1] = before;
    return end;
}

}  // namespace TalIec61850Tools
