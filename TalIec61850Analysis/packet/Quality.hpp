#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/BitString.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

enum class Validity : std::uint8_t { good = 0, invalid = 1, reserved = 2, questionable = 3 };
enum class Source : std::uint8_t { process = 0, substituted = 1 };

/// The quality of a value (IEC 61850-7-3).
struct Quality {
    Validity validity = Validity::good;
    bool overflow = false;
    bool outOfRange = false;
    bool badReference = false;
    bool oscillatory = false;
    bool failure = false;
    bool oldData = false;
    bool inconsistent = false;
    bool inaccurate = false;
    Source source = Source::process;
    bool test = false;
    bool operatorBlocked = false;

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
