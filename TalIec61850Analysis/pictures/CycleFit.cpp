#include <TalIec61850Analysis/pictures/CycleFit.hpp>
#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>

namespace TalIec61850Analysis::detail {

std::size_t CycleFit::samplesIn(double perCycle) {
    return static_cast<std::size_t>(std::llround(perCycle));
}

CycleFit::CycleFit(double perCycle, std::size_t mostHarmonics) : samples_(samplesIn(perCycle)) {
    // More unknowns would fit noise, and make the equations worse.
    std::size_t const told = (samples_ * 4 / 5 - 1) / 2;
    unknowns_ = 1 + 2 * std::min(mostHarmonics, told);
    fillBasis(perCycle);
    factorise();
}

void CycleFit::fillBasis(double perCycle) {
    basis_.assign(unknowns_ * samples_, 1.0);
    double const middle = static_cast<double>(samples_ - 1) / 2;
    for (std::size_t sample = 0; sample < samples_; ++sample) {
        double const angle =
            2 * std::numbers::pi * (static_cast<double>(sample) - middle) / perCycle;
        std::complex<double> const turn = std::polar(1.0, angle);
        std::complex<double> harmonic = turn;
        for (std::size_t unknown = 1; unknown < unknowns_; unknown += 2) {
            basis_[unknown * samples_ + sample] = harmonic.real();
            basis_[(unknown + 1) * samples_ + sample] = harmonic.imag();
            harmonic *= turn;
        }
    }
}

void CycleFit::factorise() {
    factor_.assign(unknowns_ * unknowns_, 0.0);
    for (std::size_t i = 0; i < unknowns_; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            auto const a = row(i);
            auto const b = row(j);
            double sum = std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
            for (std::size_t k = 0; k < j; ++k) {
                sum -= factor_[i * unknowns_ + k] * factor_[j * unknowns_ + k];
            }
            factor_[i * unknowns_ + j] = i == j ? std::sqrt(sum) : sum / factor_[j * unknowns_ + j];
        }
    }
}

void CycleFit::solve(std::vector<double>& right) const {
    for (std::size_t i = 0; i < unknowns_; ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            right[i] -= factor_[i * unknowns_ + k] * right[k];
        }
        right[i] /= factor_[i * unknowns_ + i];
    }
    for (std::size_t i = unknowns_; i-- > 0;) {
        for (std::size_t k = i + 1; k < unknowns_; ++k) {
            right[i] -= factor_[k * unknowns_ + i] * right[k];
        }
        right[i] /= factor_[i * unknowns_ + i];
    }
}

CycleContent CycleFit::fit(std::span<double const> values) const {
    std::vector<double> projections(unknowns_);
    for (std::size_t unknown = 0; unknown < unknowns_; ++unknown) {
        auto const basis = row(unknown);
        projections[unknown] = std::inner_product(basis.begin(), basis.end(), values.begin(), 0.0);
    }
    std::vector<double> found = projections;
    solve(found);
    // What the fit leaves of the squares is noise of any frequency.
    double const all = std::inner_product(values.begin(), values.end(), values.begin(), 0.0);
    double const fitted = std::inner_product(found.begin(), found.end(), projections.begin(), 0.0);
    double meanSquare =
        std::max(all - fitted, 0.0) / static_cast<double>(samples_) + found[0] * found[0];
    for (std::size_t unknown = 1; unknown < unknowns_; ++unknown) {
        meanSquare += found[unknown] * found[unknown] / 2;
    }
    return {.mean = found[0], .cosine = found[1], .sine = found[2], .meanSquare = meanSquare};
}

}  // namespace TalIec61850Analysis::detail
