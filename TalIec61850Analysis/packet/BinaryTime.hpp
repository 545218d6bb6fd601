#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// A time of day, with or without a date (ISO 9506-2, TimeOfDay).
struct BinaryTime {
    /// Since midnight.
    std::uint32_t milliseconds = 0;
    /// Since 1984-01-01.
    std::optional<std::uint16_t> days;

    /// Whether the milliseconds make less than a day.
    [[nodiscard]] bool isTimeOfDay() const { return milliseconds < 86'400'000U; }

    /// Member by member.
    friend bool operator==(BinaryTime const&, BinaryTime const&) = default;
};

/// Nothing unless there are four octets, or six.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<BinaryTime> readBinaryTime(
    Octets octets) noexcept;

}  // namespace TalIec61850Analysis
