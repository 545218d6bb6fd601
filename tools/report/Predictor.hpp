#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace TalIec61850Tools {

/// How many samples back a prediction looks: over a cycle of 80 samples, so that noise averages
/// out.
inline constexpr std::array<std::size_t, 16> kLags = {1,  2,  3,  4,  6,  8,  12, 16,
                                                      20, 24, 32, 40, 48, 56, 64, 80};

/// Other channels of the same samples.
using OtherChannels = std::span<std::span<std::int32_t const> const>;

/// As many others are looked at: the sum of three phases is often a channel too.
inline constexpr std::size_t kMostOthers = 3;

/// Predicts a number from those before it, in integers alone, so that a reader in another language
/// computes the same: the sum of factors times numbers, divided by 2^shift and rounded down.
/// Numbers before the first are 0. All sums are below 2^53.
struct Predictor {
    /// One for each of the first lags; empty for a prediction of 0.
    std::vector<std::int64_t> factors;
    /// One for each of the other channels, whose number at the same place is known too.
    std::vector<std::int64_t> otherFactors;
    unsigned shift = 0;

    /// @param numbers  of which `place` is to be predicted
    /// @param others   as many as otherFactors, as long as `numbers`
    [[nodiscard]] std::int64_t operator()(std::span<std::int32_t const> numbers,
                                          OtherChannels others, std::size_t place) const {
        std::int64_t sum = 0;
        for (std::size_t i = 0; i < otherFactors.size(); ++i) {
            sum += otherFactors[i] * others[i][place];
        }
        for (std::size_t i = 0; i < factors.size(); ++i) {
            if (kLags[i] <= place) {
                sum += factors[i] * numbers[place - kLags[i]];
            }
        }
        return sum >> shift;
    }
};

/// The number before.
[[nodiscard]] Predictor predictTheSame();

/// What predicts these numbers best, by least squares.
/// @param others  at most kMostOthers, as long as `numbers`
[[nodiscard]] Predictor fitPredictor(std::span<std::int32_t const> numbers, OtherChannels others);

}  // namespace TalIec61850Tools
