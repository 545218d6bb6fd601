#include "tools/render/RoundTicks.hpp"

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

/// The step after one of 1, 2 or 5 of a power of ten.
constexpr std::int64_t nextDecimal(std::int64_t step) {
    std::int64_t leading = step;
    while (leading >= 10) {
        leading /= 10;
    }
    return leading == 2 ? step / 2 * 5 : step * 2;
}

/// What is after the last digit that a step of less than a second has.
std::size_t decimalsOf(std::int64_t step) {
    std::size_t decimals = 9;
    while (decimals > 0 && step % 10 == 0) {
        step /= 10;
        --decimals;
    }
    return decimals;
}

/// A step, and what its labels have of 2024-03-20T10:00:00.123456789Z.
TimeStep labelledStep(std::int64_t step) {
    constexpr std::size_t kDayEnd = 10;
    constexpr std::size_t kClock = 11;
    constexpr std::size_t kMinuteEnd = 16;
    constexpr std::size_t kSecondEnd = 19;
    if (step >= kDay) {
        return {.length = step, .first = 0, .end = kDayEnd};
    }
    if (step >= kMinute) {
        return {.length = step, .first = kClock, .end = kMinuteEnd};
    }
    std::size_t const decimals = step >= kSecond ? 0 : decimalsOf(step);
    std::size_t const end = kSecondEnd + (decimals == 0 ? 0 : decimals + 1);
    return {.length = step, .first = kClock, .end = end};
}

std::vector<TimeStep> makeTimeSteps() {
    constexpr std::array<std::int64_t, 17> kClockSteps = {
        kSecond, 2 * kSecond, 5 * kSecond, 10 * kSecond, 15 * kSecond, 30 * kSecond,
        kMinute, 2 * kMinute, 5 * kMinute, 10 * kMinute, 15 * kMinute, 30 * kMinute,
        kHour,   2 * kHour,   3 * kHour,   6 * kHour,    12 * kHour};
    constexpr std::int64_t kMostDays = 100'000;
    std::vector<TimeStep> steps;
    for (std::int64_t step = 1; step < kSecond; step = nextDecimal(step)) {
        steps.push_back(labelledStep(step));
    }
    for (std::int64_t const step : kClockSteps) {
        steps.push_back(labelledStep(step));
    }
    for (std::int64_t days = 1; days <= kMostDays; days = nextDecimal(days)) {
        steps.push_back(labelledStep(days * kDay));
    }
    return steps;
}

/// The finest step of time that is no less than a length, or the longest there is.
std::int64_t timeStep(std::uint64_t least) {
    auto const& steps = timeSteps();
    auto const enough = std::find_if(steps.begin(), steps.end(), [least](TimeStep const& step) {
        return static_cast<std::uint64_t>(step.length) >= least;
    });
    return enough == steps.end() ? steps.back().length : enough->length;
}

/// Multiples of 1, 2 or 5 of a power of ten.
class DecimalStep {
public:
    /// The finest one that is no less than this.
    explicit DecimalStep(double least) : power_(static_cast<int>(std::floor(std::log10(least)))) {
        // One that was rounded up by a bit is as good.
        constexpr double kRounded = 1e-12;
        for (digit_ = 1; digit_ < 10 && at(1) < least * (1 - kRounded);
             digit_ = digit_ == 2 ? 5 : 2 * digit_) {
        }
        if (digit_ >= 10) {
            digit_ = 1;
            ++power_;
        }
    }

    /// A power of ten that is below 1 is divided by: it is not a double, its inverse is.
    [[nodiscard]] double at(double count) const {
        return power_ < 0 ? count * digit_ / std::pow(10.0, -power_)
                          : count * digit_ * std::pow(10.0, power_);
    }
    /// How many steps a value is.
    [[nodiscard]] double countOf(double value) const {
        return power_ < 0 ? value * std::pow(10.0, -power_) / digit_
                          : value / (digit_ * std::pow(10.0, power_));
    }

private:
    int power_;
    double digit_ = 1;
};

std::string utcTextOf(std::int64_t time) {
    return toUtcText(TalIec61850Analysis::captureTimeOf(time));
}

}  // namespace

std::vector<TimeStep> const& timeSteps() {
    static std::vector<TimeStep> const steps = makeTimeSteps();
    return steps;
}

TimeTicks roundTimes(std::int64_t from, std::int64_t to, std::size_t mostSteps) {
    if (to < from) {
        return {};
    }
    std::uint64_t const length = static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
    std::uint64_t const most = std::max<std::uint64_t>(1, mostSteps);
    TimeTicks ticks{.step = timeStep(length / most + (length % most == 0 ? 0 : 1)), .times = {}};
    std::int64_t first = from / ticks.step;
    first += from > first * ticks.step ? 1 : 0;
    std::int64_t last = to / ticks.step;
    last -= to < last * ticks.step ? 1 : 0;
    for (std::int64_t number = first; number <= last; ++number) {
        ticks.times.push_back(number * ticks.step);
    }
    return ticks;
}

ValueTicks roundValues(double from, double to, std::size_t mostSteps) {
    if (!std::isfinite(from) || !std::isfinite(to) || to < from) {
        return {};
    }
    // Halves: the length of an axis may be more than a double holds.
    auto const most = static_cast<double>(std::max<std::size_t>(2, mostSteps));
    double const least = (to / 2 - from / 2) / most * 2;
    if (least < std::numeric_limits<double>::min()) {
        return {.step = 1, .values = {from}};
    }
    DecimalStep const step(least);
    // An end that is a multiple counts as one, however it was rounded.
    constexpr double kRounded = 1e-9;
    double const first = std::ceil(step.countOf(from) - kRounded);
    double const last = std::floor(step.countOf(to) + kRounded);
    constexpr double kMostCount = 0x1p50;
    if (std::abs(first) > kMostCount || std::abs(last) > kMostCount) {
        return {.step = step.at(1), .values = {from}};
    }
    ValueTicks ticks{.step = step.at(1), .values = {}};
    for (auto count = static_cast<std::int64_t>(first); count <= static_cast<std::int64_t>(last);
         ++count) {
        ticks.values.push_back(step.at(static_cast<double>(count)) + 0.0);
    }
    return ticks;
}

std::string tickText(std::int64_t time, std::int64_t step) {
    TimeStep const part = labelledStep(step);
    return utcTextOf(time).substr(part.first, part.end - part.first);
}

std::string dayText(std::int64_t time) {
    constexpr std::size_t kDayEnd = 10;
    return utcTextOf(time).substr(0, kDayEnd);
}

}  // namespace TalIec61850Tools
