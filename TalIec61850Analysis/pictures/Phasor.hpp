#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>

namespace TalIec61850Analysis {

/// The fundamental of a quantity at an instant: at a time t after that, the quantity is
/// sqrt(2) * magnitude * cos(2 * pi * frequency * t + angle).
struct Phasor {
    /// Its root mean square, in the unit of the values.
    double magnitude = 0;
    /// In radians, above -pi and at most pi.
    double angle = 0;

    /// Member by member.
    friend bool operator==(Phasor const&, Phasor const&) = default;
};

/// An angle, turned to the range of Phasor::angle.
/// @param angle  in radians; NaN and infinity give NaN
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT double foldedAngle(double angle) noexcept;

/// The angle of a phasor as others are told: against that of a reference at the same instant.
/// @param angle      in radians
/// @param reference  in radians
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT double angleAgainst(double angle,
                                                             double reference) noexcept;

/// The angle of a phasor as devices tell it that are synchronized: against a cosine of the nominal
/// frequency that has a peak at each full second.
/// @param angle    at the instant, in radians
/// @param instant  of the phasor
/// @param nominal  in hertz; a whole number, or the cosine is that of the second of the instant
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT double synchronizedAngle(double angle, CaptureTime instant,
                                                                  double nominal) noexcept;

}  // namespace TalIec61850Analysis
