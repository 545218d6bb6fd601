#include <TalIec61850Analysis/comtrade/ComtradeStep.hpp>
#include <algorithm>
#include <cmath>
#include <optional>

namespace TalIec61850Analysis {

namespace {

/// Integers shifted as little as the range allows.
/// @return none where their span does not fit, or where the shift is no number of double precision
std::optional<ComtradeStep> shiftOf(ComtradeRange range, std::int64_t smallest,
                                    std::int64_t largest) {
    auto const span = static_cast<std::uint64_t>(largest) - static_cast<std::uint64_t>(smallest);
    if (span > static_cast<std::uint64_t>(range.highest - range.lowest)) {
        return std::nullopt;
    }
    // One end is outside of the range, and on that side of zero: neither difference overflows.
    std::int64_t const shift =
        largest > range.highest ? largest - range.highest : smallest - range.lowest;
    // Up to here, every integer is a number of double precision.
    constexpr std::int64_t mostExact = std::int64_t{1} << 53U;
    if (shift < -mostExact || mostExact < shift) {
        return std::nullopt;
    }
    return ComtradeStep{.size = 1, .middle = static_cast<double>(shift)};
}

/// By how much numbers of this magnitude differ at least.
double resolutionAt(double magnitude) { return magnitude - std::nextafter(magnitude, 0.0); }

}  // namespace

ComtradeStep stepForIntegers(ComtradeFormat format, std::int64_t smallest,
                             std::int64_t largest) noexcept {
    ComtradeRange const range = comtradeRange(format);
    if (largest < smallest || (range.contains(smallest) && range.contains(largest))) {
        return {};
    }
    if (auto const shift = shiftOf(range, smallest, largest)) {
        return *shift;
    }
    ComtradeStep step =
        stepForReals(format, static_cast<double>(smallest), static_cast<double>(largest));
    // Integers are shifted exactly by an integer.
    step.middle = std::round(step.middle);
    return step;
}

ComtradeStep stepForReals(ComtradeFormat format, double smallest, double largest) noexcept {
    if (!std::isfinite(smallest) || !std::isfinite(largest) || largest < smallest) {
        return {};
    }
    if (smallest == largest) {
        return {.size = 1, .middle = smallest};
    }
    // What rounding adds may take one number at either end.
    ComtradeRange const range = comtradeRange(format);
    auto const highest = static_cast<double>(range.highest - 1);
    auto const lowest = static_cast<double>(range.lowest + 1);
    double const width = highest - lowest;
    double const magnitude = std::max(std::abs(smallest), std::abs(largest));
    // Finer than the samples' own resolution it need not be; the middle could not be told.
    double const finest = std::max(resolutionAt(magnitude), largest / width - smallest / width);
    double const aroundZero = magnitude / std::min(highest, -lowest);
    if (aroundZero <= finest * 4 / 3) {
        return {.size = std::max(aroundZero, finest), .middle = 0};
    }
    return {.size = finest, .middle = largest - highest * finest};
}

}  // namespace TalIec61850Analysis
