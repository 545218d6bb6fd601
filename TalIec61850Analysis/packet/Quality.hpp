#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/BitString.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// How far a value can be trusted (IEC 61850-7-3).
enum class Validity : std::uint8_t { good = 0, invalid = 1, reserved = 2, questionable = 3 };
/// Where a value comes from (IEC 61850-7-3).
enum class Source : std::uint8_t { process = 0, substituted = 1 };

/// The quality of a value (IEC 61850-7-3).
struct Quality {
    /// How far the value can be trusted.
    Validity validity = Validity::good;
    /// The value is beyond what its type holds.
    bool overflow = false;
    /// The value is beyond its limits.
    bool outOfRange = false;
    /// The reference of the measurement is bad.
    bool badReference = false;
    /// The value changes too often to be reported.
    bool oscillatory = false;
    /// A supervision found a failure of the source.
    bool failure = false;
    /// The value has not been updated in time.
    bool oldData = false;
    /// An evaluation found the value inconsistent.
    bool inconsistent = false;
    /// The value lacks its stated accuracy.
    bool inaccurate = false;
    /// Where the value comes from.
    Source source = Source::process;
    /// The value is for tests.
    bool test = false;
    /// An operator has blocked updates.
    bool operatorBlocked = false;

    /// Member by member.
    friend bool operator==(Quality const&, Quality const&) = default;
};

/// The bits that a quality takes as a bit-string.
inline constexpr std::size_t kQualityBits = 13;

/// Reads a bit-string as a quality; nothing unless it has exactly 13 bits.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<Quality> readQuality(
    BitStringView const& bits) noexcept;

/// Reads the bits of a number as a quality, the validity in the lowest two; those above
/// operatorBlocked do not count.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT Quality qualityFromBits(std::uint32_t bits) noexcept;

}  // namespace TalIec61850Analysis
