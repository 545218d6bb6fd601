#pragma once

#include <cstdint>
#include <optional>

#include "tools/inspect/OctetString.hpp"

namespace TalIec61850Tools {

/// A time of day, with or without a date (ISO 9506-2, TimeOfDay).
struct BinaryTime {
    /// Since midnight.
    std::uint32_t milliseconds = 0;
    /// Since 1984-01-01.
    std::optional<std::uint16_t> days;

    /// Whether the milliseconds make less than a day.
    [[nodiscard]] bool isTimeOfDay() const { return milliseconds < 86'400'000U; }

    friend bool operator==(BinaryTime const&, BinaryTime const&) = default;
};

/// Nothing unless there are four octets, or six.
[[nodiscard]] std::optional<BinaryTime> readBinaryTime(OctetString const& octets);

}  // namespace TalIec61850Tools
