#pragma once

// Internal: a line through points.

#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// Least squares of y over x. Points should be counted from one that is near: the sums of squares
/// are exact enough then for as many as a capture holds.
class LineFit {
public:
    void add(std::int64_t pointX, std::int64_t pointY) {
        auto const x = static_cast<long double>(pointX);
        auto const y = static_cast<long double>(pointY);
        count_ += 1;
        sumX_ += x;
        sumY_ += y;
        sumXx_ += x * x;
        sumXy_ += x * y;
    }

    [[nodiscard]] bool isEmpty() const { return count_ == 0; }
    /// @pre !isEmpty()
    [[nodiscard]] double meanX() const { return static_cast<double>(sumX_ / count_); }
    /// @pre !isEmpty()
    [[nodiscard]] double meanY() const { return static_cast<double>(sumY_ / count_); }
    /// Not set where all points have one x.
    [[nodiscard]] std::optional<double> slope() const {
        if (isEmpty()) {
            return std::nullopt;
        }
        long double const spread = sumXx_ - sumX_ * sumX_ / count_;
        if (spread <= 0) {
            return std::nullopt;
        }
        return static_cast<double>((sumXy_ - sumX_ * sumY_ / count_) / spread);
    }

private:
    long double count_ = 0;
    long double sumX_ = 0;
    long double sumY_ = 0;
    long double sumXx_ = 0;
    long double sumXy_ = 0;
};

}  // namespace TalIec61850Analysis::detail
