#include "tools/plot/ValueAxis.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace TalIec61850Tools {

namespace {

constexpr double kMost = std::numeric_limits<double>::max();

/// Which power of ten a number is.
int powerOf(double number) { return static_cast<int>(std::floor(std::log10(number) + 1e-9)); }

/// Units that have prefixes; what a description calls a unit may be anything.
bool takesPrefix(std::string_view unit) {
    constexpr std::array<std::string_view, 6> kUnits = {"A", "V", "W", "VA", "VAr", "Hz"};
    return std::find(kUnits.begin(), kUnits.end(), unit) != kUnits.end();
}

}  // namespace

ValueAxis::ValueAxis(ValueRange const& range, std::string unit, double height)
    : height_(height), unit_(std::move(unit)) {
    constexpr double kRoom = 0.05;
    constexpr double kEqual = 1e-12;
    double const size = std::max(std::abs(range.least), std::abs(range.largest));
    // Halves: the difference may be more than a double holds.
    double room = (range.largest / 2 - range.least / 2) * 2 * kRoom;
    if (!std::isfinite(room)) {
        room = 0;
    } else if (room <= size * kEqual) {
        constexpr double kTiny = 1e-300;
        room = size == 0 ? 1 : std::max(size / 10, kTiny);
    }
    low_ = std::max(range.least - room, -kMost);
    high_ = std::min(range.largest + room, kMost);
    constexpr double kLeastDistance = 22;
    ticks_ = roundValues(low_, high_, static_cast<std::size_t>(height_ / kLeastDistance));
    choosePrefix();
    chooseForm();
}

double ValueAxis::at(double value) const {
    double const part = (value / 2 - low_ / 2) / (high_ / 2 - low_ / 2);
    return height_ * (1 - std::clamp(part, 0.0, 1.0));
}

void ValueAxis::choosePrefix() {
    struct Prefix {
        double factor;
        std::string_view text;
    };
    constexpr std::array<Prefix, 6> kPrefixes = {
        {{1e9, "G"}, {1e6, "M"}, {1e3, "k"}, {1, ""}, {1e-3, "m"}, {1e-6, "\u00b5"}}};
    double const size = std::max(std::abs(low_), std::abs(high_));
    if (!takesPrefix(unit_)) {
        // Of counts, and of what is no unit of its own, numbers are told shorter: 5M.
        constexpr double kLong = 1e5;
        constexpr double kTooLong = 1e12;
        for (std::size_t i = 0; i < 3 && size >= kLong && size < kTooLong; ++i) {
            if (size >= kPrefixes[i].factor) {
                factor_ = kPrefixes[i].factor;
                suffix_ = kPrefixes[i].text;
                return;
            }
        }
        return;
    }
    for (Prefix const& prefix : kPrefixes) {
        if (size >= prefix.factor) {
            // What is below a millionth is told by an exponent.
            factor_ = prefix.factor;
            unit_.insert(0, prefix.text);
            return;
        }
    }
}

void ValueAxis::chooseForm() {
    constexpr double kManyDigits = 1e7;
    constexpr double kFewDigits = 1e-4;
    constexpr int kMostDecimals = 9;
    double const size = std::max(std::abs(low_), std::abs(high_)) / factor_;
    double const step = ticks_.step / factor_;
    isExponential_ = size >= kManyDigits || size < kFewDigits;
    if (!(step > 0) || !std::isfinite(step) || !std::isfinite(size)) {
        return;
    }
    int const decimals = isExponential_ ? powerOf(size) - powerOf(step) : -powerOf(step);
    decimals_ = std::clamp(decimals, 0, kMostDecimals);
}

std::string ValueAxis::labelOf(double value) const {
    double const shown = value / factor_;
    if (shown == 0) {
        return "0";
    }
    if (!isExponential_) {
        return fmt::format("{:.{}f}{}", shown, decimals_, suffix_);
    }
    // 1.50e+30 is written as 1.5e30.
    std::string const text = fmt::format("{:.{}e}", shown, decimals_);
    std::size_t const mark = text.find('e');
    std::string digits = text.substr(0, mark);
    if (digits.find('.') != std::string::npos) {
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.back() == '.') {
            digits.pop_back();
        }
    }
    bool const isSmall = text[mark + 1] == '-';
    std::string power = text.substr(mark + 2);
    power.erase(0, std::min(power.find_first_not_of('0'), power.size() - 1));
    return fmt::format("{}e{}{}", digits, isSmall ? "-" : "", power);
}

}  // namespace TalIec61850Tools
