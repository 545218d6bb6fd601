#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <optional>
#include <span>

namespace TalIec61850Analysis {

/// Finds the frequency of the fundamental in samples: that at which the phasors of their cycles do
/// not turn. A pure wave gives it exactly, whatever part of a sample a cycle ends with; harmonics
/// do not change it.
/// @param values   one after the other at one rate, finite; two cycles at least, and the more, the
///                 less noise counts
/// @param rate     samples a second, above 0
/// @param nominal  what is expected, in hertz; 0 where it may be 50 or 60
/// @return in hertz; not set where values are too few, have no fundamental, or one that is a fifth
///         or more away from `nominal`, or not between 44 and 66 Hz
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<double> findFrequency(
    std::span<double const> values, double rate, double nominal = 0);

/// The nominal frequency of a power system by the one that it has: 50 or 60 Hz.
/// @param frequency  in hertz
[[nodiscard]] constexpr double nearestNominal(double frequency) noexcept {
    return frequency < 55 ? 50 : 60;
}

}  // namespace TalIec61850Analysis
