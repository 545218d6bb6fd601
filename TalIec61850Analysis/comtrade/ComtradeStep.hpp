#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeFormat.hpp>
#include <cstdint>

namespace TalIec61850Analysis {

/// How a sample becomes the number that is stored: round((sample - middle) / size). The
/// configuration file says how to get back.
struct ComtradeStep {
    /// By how much samples differ whose stored numbers differ by one; more than 0.
    double size = 1;
    /// The sample that is stored as 0.
    double middle = 0;

    /// Member by member.
    friend bool operator==(ComtradeStep const&, ComtradeStep const&) = default;
};

/// Chooses a step for integers. They are stored as they are where the format holds them all;
/// shifted and still exact where their span fits; rounded where it does not. Zero stays zero
/// where that costs less than a third of the resolution.
/// @param format    where they are to be stored
/// @param smallest  of all samples that are there
/// @param largest   of all samples that are there; where it is below `smallest`, the step stores
///                  samples as they are
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT ComtradeStep
stepForIntegers(ComtradeFormat format, std::int64_t smallest, std::int64_t largest) noexcept;

/// Chooses a step for floating point samples: the span from the smallest to the largest takes the
/// range of the format. Zero stays zero where that costs less than a third of the resolution.
/// @param format    where they are to be stored
/// @param smallest  of all samples that are there and finite
/// @param largest   of all samples that are there and finite. Where it is below `smallest`, or one
///                  is not finite, the step stores samples as they are
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT ComtradeStep stepForReals(ComtradeFormat format,
                                                                   double smallest,
                                                                   double largest) noexcept;

}  // namespace TalIec61850Analysis
