#pragma once

// Internal: the fundamental and its harmonics in samples of about one cycle.

#include <cstddef>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// What samples of a cycle are made of.
struct CycleContent {
    /// The direct component.
    double mean = 0;
    /// The fundamental is cosine * cos(wt) + sine * sin(wt), t counted from the middle between the
    /// first sample and the last.
    double cosine = 0;
    double sine = 0;
    /// Of the whole cycle: the mean of all squares.
    double meanSquare = 0;
};

/// Fits a direct component, a fundamental of known frequency and its harmonics to samples by least
/// squares. Where a cycle is a whole number of samples, that is the discrete Fourier transform of
/// one cycle; where it is not, it is as exact, which the transform would not be.
///
/// Harmonics are in the fit up to the 25th, and up to four fifths of what the samples can tell.
class CycleFit {
public:
    /// Samples that a cycle has to have.
    static constexpr double kFewestPerCycle = 3.5;
    /// No cycle of so many is measured: 16.7 Hz at 96 kHz has 5,760.
    static constexpr double kMostPerCycle = 16'384;
    /// Harmonics in the fit; the fundamental is the first.
    static constexpr std::size_t kMostHarmonics = 25;

    /// @param perCycle       samples in a cycle, kFewestPerCycle to kMostPerCycle; need not be
    ///                       whole
    /// @param mostHarmonics  in the fit; at least 1
    explicit CycleFit(double perCycle, std::size_t mostHarmonics = kMostHarmonics);

    /// How many samples are taken for a cycle of so many: the nearest number.
    [[nodiscard]] static std::size_t samplesIn(double perCycle);
    /// Whether a cycle of so many can be measured.
    [[nodiscard]] static bool isMeasurable(double perCycle) {
        return perCycle >= kFewestPerCycle && perCycle <= kMostPerCycle;
    }

    /// How many samples are fitted.
    [[nodiscard]] std::size_t samples() const { return samples_; }
    /// @param values  samples() of them, finite
    [[nodiscard]] CycleContent fit(std::span<double const> values) const;

private:
    [[nodiscard]] std::span<double const> row(std::size_t unknown) const {
        return std::span(basis_).subspan(unknown * samples_, samples_);
    }
    void fillBasis(double perCycle);
    void factorise();
    void solve(std::vector<double>& right) const;

    std::size_t samples_;
    /// 1 and two for each harmonic.
    std::size_t unknowns_;
    /// For each unknown, what it adds to each sample.
    std::vector<double> basis_;
    /// The lower triangle of the Cholesky factor of the normal equations, row by row.
    std::vector<double> factor_;
};

}  // namespace TalIec61850Analysis::detail
