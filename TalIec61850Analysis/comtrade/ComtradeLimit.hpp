#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// Why a record cannot be written.
enum class ComtradeLimit : std::uint8_t {
    /// There is no channel at all.
    noChannel,
    /// There are more than 999 999 channels.
    tooManyChannels,
    /// There is no row.
    noRow,
    /// There are more rows than sample numbers: 4 294 967 295, in ASCII 9 999 999 999.
    tooManyRows,
    /// A part of the rate is 0.
    noRate,
    /// The time of the last row is past the year 2262.
    tooLong,
    /// A number of a channel, or the line frequency, is not finite, or a step is not above 0.
    noNumber,
    /// The edition of 1999 has no binary32.
    dataOfOtherEdition,
    /// The time quality code is none: 12 to 14, or above 15.
    timeQuality
};

/// What keeps a record from being written.
/// @return none where it can be written; else the first that is found
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<ComtradeLimit> brokenLimit(
    ComtradeRecord const& record) noexcept;

}  // namespace TalIec61850Analysis
