#include "tools/report/Predictor.hpp"

#include <algorithm>
#include <cmath>

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kOrder = kLags.size() + kMostOthers;
constexpr std::size_t kReach = kLags.back();
/// As many numbers are looked at, in pieces all over.
constexpr std::size_t kPieces = 8;
constexpr std::size_t kPieceSize = 1000;
/// Sums stay below this power of two.
constexpr int kExactBits = 52;
constexpr int kMostShift = 30;

/// The equations whose solution is the best prediction.
struct Equations {
    std::array<std::array<double, kOrder>, kOrder> products{};
    std::array<double, kOrder> targets{};

    void add(std::span<std::int32_t const> numbers, OtherChannels others, std::size_t place) {
        std::array<double, kOrder> before{};
        for (std::size_t i = 0; i < kLags.size(); ++i) {
            before[i] = numbers[place - kLags[i]];
        }
        for (std::size_t i = 0; i < others.size(); ++i) {
            before[kLags.size() + i] = others[i][place];
        }
        for (std::size_t i = 0; i < kOrder; ++i) {
            for (std::size_t j = 0; j <= i; ++j) {
                products[i][j] += before[i] * before[j];
            }
            targets[i] += before[i] * numbers[place];
        }
    }

    /// Solves them, the numbers having noise of rounding; products become their triangle.
    [[nodiscard]] std::array<double, kOrder> solve(std::size_t count) {
        constexpr double kRounding = 1.0 / 12;
        for (std::size_t i = 0; i < kOrder; ++i) {
            products[i][i] += products[i][i] * 1e-12 + kRounding * static_cast<double>(count) + 1;
            for (std::size_t j = 0; j <= i; ++j) {
                double sum = products[i][j];
                for (std::size_t k = 0; k < j; ++k) {
                    sum -= products[i][k] * products[j][k];
                }
                products[i][j] = i == j ? std::sqrt(std::max(sum, 1e-9)) : sum / products[j][j];
            }
        }
        std::array<double, kOrder> result = targets;
        for (std::size_t i = 0; i < kOrder; ++i) {
            for (std::size_t k = 0; k < i; ++k) {
                result[i] -= products[i][k] * result[k];
            }
            result[i] /= products[i][i];
        }
        for (std::size_t i = kOrder; i-- > 0;) {
            for (std::size_t k = i + 1; k < kOrder; ++k) {
                result[i] -= products[k][i] * result[k];
            }
            result[i] /= products[i][i];
        }
        return result;
    }
};

/// The bits of what a prediction leaves over, as a measure: least squares may be misled by a jump.
double costOf(Predictor const& predictor, std::span<std::int32_t const> numbers,
              OtherChannels others) {
    double cost = 0;
    std::size_t const step = std::max<std::size_t>(1, numbers.size() / kPieceSize);
    for (std::size_t i = 0; i < numbers.size(); i += step) {
        auto const rest = static_cast<double>(numbers[i] - predictor(numbers, others, i));
        cost += std::log2(1 + std::abs(rest));
    }
    return cost;
}

}  // namespace

Predictor predictTheSame() { return {.factors = {1}, .otherFactors = {}, .shift = 0}; }

Predictor fitPredictor(std::span<std::int32_t const> numbers, OtherChannels others) {
    Predictor same = predictTheSame();
    if (numbers.size() < 4 * kReach) {
        return same;
    }
    Equations equations;
    std::size_t count = 0;
    std::size_t const span = numbers.size() - kReach;
    for (std::size_t piece = 0; piece < kPieces; ++piece) {
        std::size_t const first = kReach + span / kPieces * piece;
        std::size_t const end = std::min(first + kPieceSize, numbers.size());
        for (std::size_t i = first; i < end; ++i, ++count) {
            equations.add(numbers, others, i);
        }
    }
    auto const factors = equations.solve(count);
    double largest = 1;
    auto const reach = [&](std::span<std::int32_t const> channel) {
        for (std::int32_t const number : channel) {
            largest = std::max(largest, std::abs(static_cast<double>(number)));
        }
    };
    reach(numbers);
    std::for_each(others.begin(), others.end(), reach);
    double sum = 1;
    for (double const factor : factors) {
        sum += std::abs(factor);
    }
    if (!std::isfinite(sum)) {
        return same;
    }
    int const bits = static_cast<int>(std::ceil(std::log2(sum * largest)));
    int const shift = std::min(kMostShift, kExactBits - bits);
    if (shift <= 0) {
        return same;
    }
    Predictor fitted;
    fitted.shift = static_cast<unsigned>(shift);
    for (std::size_t i = 0; i < kLags.size() + others.size(); ++i) {
        auto& list = i < kLags.size() ? fitted.factors : fitted.otherFactors;
        list.push_back(std::llround(std::ldexp(factors[i], shift)));
    }
    return costOf(fitted, numbers, others) < costOf(same, numbers, {}) ? fitted : same;
}

}  // namespace TalIec61850Tools
