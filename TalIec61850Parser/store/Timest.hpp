#pragma once

#include <compare>
#include <cstdint>

namespace TalIec61850Parser {

/// The capture time of a packet: seconds since 1970-01-01 UTC and the nanoseconds below them.
///
/// Ordered by seconds, then nanoseconds, both unsigned. Nothing is normalised: a capture file
/// that states 1,000,000,000 nanoseconds or more is stored and compared as it states them, and the
/// microseconds of others are multiplied by 1000 in 32 bits, whatever they are.
struct Timest {
    /// Whole seconds since 1970-01-01 UTC.
    std::uint32_t seconds = 0;
    /// Nanoseconds on top of them.
    std::uint32_t nanoseconds = 0;

    /// The order of time.
    // clang-tidy 14 takes the 0 that a rewritten < compares with for a null pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    friend constexpr auto operator<=>(Timest const&, Timest const&) = default;
};

}  // namespace TalIec61850Parser
