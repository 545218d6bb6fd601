#include <TalIec61850Analysis/pictures/Phasor.hpp>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace TalIec61850Analysis {

double foldedAngle(double angle) noexcept {
    // From -pi to pi; which of both is given at the border is rounding.
    double const folded = std::remainder(angle, 2 * std::numbers::pi);
    return folded <= -std::numbers::pi ? std::numbers::pi : folded;
}

double angleAgainst(double angle, double reference) noexcept {
    return foldedAngle(angle - reference);
}

double synchronizedAngle(double angle, CaptureTime instant, double nominal) noexcept {
    constexpr std::int64_t kSecond = 1'000'000'000;
    std::int64_t const part = nanosecondsOf(instant) % kSecond;
    double const turns = nominal * (static_cast<double>(part) / static_cast<double>(kSecond));
    return foldedAngle(angle - 2 * std::numbers::pi * std::remainder(turns, 1.0));
}

}  // namespace TalIec61850Analysis
