#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace TalIec61850Analysis {

/// A time stamp with its quality (IEC 61850-8-1, UtcTime).
struct UtcTime {
    /// Since 1970-01-01 UTC.
    std::uint32_t seconds = 0;
    /// The part below a second in units of 2^-24 s.
    std::uint32_t fraction = 0;
    /// The quality octet as it was sent; its parts are below.
    std::uint8_t quality = 0;

    /// The fraction in nanoseconds, cut: at most one nanosecond early, while the unit is 60.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::uint32_t nanoseconds() const noexcept;

    /// The whole, in nanoseconds since 1970, cut likewise.
    [[nodiscard]] std::int64_t nanosecondsSince1970() const noexcept {
        constexpr std::int64_t kNanosecondsInSecond = 1'000'000'000;
        return std::int64_t{seconds} * kNanosecondsInSecond + nanoseconds();
    }

    /// The clock takes leap seconds into account.
    [[nodiscard]] bool leapSecondsKnown() const { return (quality & 0x80U) != 0; }
    /// The clock has failed.
    [[nodiscard]] bool clockFailure() const { return (quality & 0x40U) != 0; }
    /// The clock is not synchronized.
    [[nodiscard]] bool clockNotSynchronized() const { return (quality & 0x20U) != 0; }
    /// Bits of the fraction that count, 0 to 24; 25 to 30 are invalid, 31 leaves it unspecified.
    [[nodiscard]] std::uint8_t accuracy() const { return quality & 0x1FU; }

    /// Member by member.
    friend bool operator==(UtcTime const&, UtcTime const&) = default;
};

/// The number of octets a UtcTime has.
inline constexpr std::size_t kUtcTimeSize = 8;

/// Nothing unless there are eight octets.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<UtcTime> readUtcTime(
    std::span<std::uint8_t const> octets) noexcept;

}  // namespace TalIec61850Analysis
