#include <TalIec61850Analysis/pictures/CycleFit.hpp>
#include <TalIec61850Analysis/pictures/FindFrequency.hpp>
#include <TalIec61850Analysis/pictures/Phasor.hpp>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace TalIec61850Analysis {

namespace {

/// Between 50 and 60 Hz, where which of both is not known.
constexpr double kBetweenNominals = 55;
constexpr double kFarthest = 0.2;
/// A fundamental that is less of the whole is rounding, or noise.
constexpr double kLeastPart = 1e-6;

/// The slope of values over their numbers, by least squares; two values at least.
double slopeOf(std::vector<double> const& values) {
    auto const middle = static_cast<double>(values.size() - 1) / 2;
    double product = 0;
    double square = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        double const x = static_cast<double>(i) - middle;
        product += x * values[i];
        square += x * x;
    }
    return product / square;
}

/// Where the cycles begin that are compared.
struct CycleSteps {
    std::size_t cycles = 2;
    std::size_t step = 0;
};

CycleSteps stepsIn(std::size_t values, std::size_t cycle) {
    std::size_t const whole = values / cycle;
    return whole >= 2 ? CycleSteps{whole, cycle} : CycleSteps{2, values - cycle};
}

/// By how much phasors turn from one sample to the next, beyond the frequency they are fitted with,
/// in radians; not set where there is no fundamental.
std::optional<double> turnOf(std::span<double const> values, double perCycle,
                             std::size_t harmonics) {
    detail::CycleFit const fit(perCycle, harmonics);
    CycleSteps const steps = stepsIn(values.size(), fit.samples());
    double const turnInStep =
        2 * std::numbers::pi * std::remainder(static_cast<double>(steps.step) / perCycle, 1.0);
    std::vector<double> angles;
    angles.reserve(steps.cycles);
    for (std::size_t cycle = 0; cycle < steps.cycles; ++cycle) {
        auto const content = fit.fit(values.subspan(cycle * steps.step, fit.samples()));
        double const square = content.cosine * content.cosine + content.sine * content.sine;
        if (!(square > kLeastPart * kLeastPart * content.meanSquare)) {
            return std::nullopt;
        }
        double const angle =
            std::atan2(-content.sine, content.cosine) - static_cast<double>(cycle) * turnInStep;
        double const before = angles.empty() ? 0 : angles.back();
        angles.push_back(before + foldedAngle(angle - before));
    }
    return slopeOf(angles) / static_cast<double>(steps.step);
}

/// Samples with a fundamental that is to be found.
struct SearchedSamples {
    std::span<double const> values;
    double rate = 0;
    /// In hertz.
    double expected = 0;
};

/// Where a search has come to.
struct SearchedCycle {
    /// Samples in a cycle.
    double perCycle = 0;
    /// By what part the last step changed the frequency.
    double change = 1;
};

/// Goes on, step by step, to the frequency at which phasors do not turn.
/// @param start      samples in a cycle
/// @param harmonics  that are in the fits
/// @param exact      the least change that is worth another step
/// @return not set where there is no fundamental near to what is expected
std::optional<SearchedCycle> searchFrom(SearchedSamples const& samples, double start,
                                        std::size_t harmonics, double exact) {
    constexpr int kMostSteps = 20;
    SearchedCycle cycle{.perCycle = start};
    for (int step = 0; step < kMostSteps && std::abs(cycle.change) > exact; ++step) {
        constexpr double kLeastOfTwo = 1.9;
        if (static_cast<double>(samples.values.size()) < kLeastOfTwo * cycle.perCycle) {
            return std::nullopt;
        }
        auto const turn = turnOf(samples.values, cycle.perCycle, harmonics);
        if (!turn) {
            return std::nullopt;
        }
        double const before = 1 / cycle.perCycle;
        double const found = before + *turn / (2 * std::numbers::pi);
        if (!(std::abs(found * samples.rate / samples.expected - 1) < kFarthest)) {
            return std::nullopt;
        }
        cycle = {.perCycle = 1 / found, .change = found / before - 1};
    }
    return cycle;
}

}  // namespace

std::optional<double> findFrequency(std::span<double const> values, double rate, double nominal) {
    constexpr double kNear = 1e-4;
    constexpr double kExact = 1e-11;
    constexpr double kCloseEnough = 1e-4;
    double const expected = nominal > 0 ? nominal : kBetweenNominals;
    double const perCycle = rate / expected;
    if (!detail::CycleFit::isMeasurable(perCycle * (1 - kFarthest)) ||
        !detail::CycleFit::isMeasurable(perCycle * (1 + 2 * kFarthest))) {
        return std::nullopt;
    }
    SearchedSamples const samples{.values = values, .rate = rate, .expected = expected};
    // A fit of the fundamental alone takes little time, and comes near.
    auto const near = searchFrom(samples, perCycle, 1, kNear);
    std::optional<SearchedCycle> found;
    if (near) {
        found = searchFrom(samples, near->perCycle, detail::CycleFit::kMostHarmonics, kExact);
    }
    if (!found) {
        found = searchFrom(samples, perCycle, detail::CycleFit::kMostHarmonics, kExact);
    }
    // With noise, the steps may end between two counts of samples.
    return found && std::abs(found->change) < kCloseEnough ? std::optional(rate / found->perCycle)
                                                           : std::nullopt;
}

}  // namespace TalIec61850Analysis
