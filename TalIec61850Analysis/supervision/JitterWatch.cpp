#include <TalIec61850Analysis/supervision/JitterWatch.hpp>
#include <algorithm>
#include <cmath>

namespace TalIec61850Analysis::detail {

void JitterWatch::begin(double interval, std::int64_t limit, DeviationSink report) {
    judge(report);
    // Of streams that are slower, nothing can be said.
    constexpr double kMostInterval = 1e12;
    interval_ = interval < kMostInterval ? interval : 0;
    limit_ = limit;
    hasOrigin_ = false;
    hasMedian_ = false;
    isAway_ = false;
}

std::int64_t JitterWatch::medianOf(std::size_t first, std::size_t end) const {
    auto sorted = residuals_;
    auto const at = [&](std::size_t i) { return sorted.begin() + static_cast<std::ptrdiff_t>(i); };
    auto const middle = at((first + end) / 2);
    std::nth_element(at(first), middle, at(end));
    return *middle;
}

/// How the residuals of a block grow from frame to frame, by the medians of its halves.
double JitterWatch::slopeOfBlock() const {
    if (size_ < kFewest) {
        return 0;
    }
    std::size_t const half = size_ / 2;
    double const slope =
        static_cast<double>(medianOf(half, size_) - medianOf(0, half)) / static_cast<double>(half);
    double const mostDrift = interval_ / 100;
    return std::clamp(slope, -mostDrift, mostDrift);
}

std::int64_t JitterWatch::lastAway() const {
    if (hasMedian_) {
        return last_ - median_;
    }
    return size_ == 0 ? 0 : last_ - medianOf(0, size_);
}

void JitterWatch::judge(DeviationSink report) {
    if (size_ == 0) {
        return;
    }
    // Too few have no median of their own.
    std::int64_t const median = size_ >= kFewest || !hasMedian_ ? medianOf(0, size_) : median_;
    std::int64_t const widest = std::max(most_ - median, median - least_);
    if (widest <= limit_ && distances_ == nullptr) {
        isAway_ = false;
    } else {
        double const slope = slopeOfBlock();
        double const centre = static_cast<double>(size_) / 2;
        for (std::size_t i = 0; i < size_; ++i) {
            double const drift = slope * (static_cast<double>(i) - centre);
            std::int64_t const away = residuals_[i] - median - static_cast<std::int64_t>(drift);
            if (distances_ != nullptr) {
                distances_->add(static_cast<std::uint64_t>(std::abs(away)));
            }
            bool const isAway = std::abs(away) > limit_;
            if (isAway && widest > limit_) {
                report({.packet = frames_[i].packet,
                        .arrival = frames_[i].arrival,
                        .before = i > 0 ? std::optional(frames_[i - 1].packet) : frameBefore_,
                        .away = away,
                        .isFirst = !isAway_});
            }
            isAway_ = isAway && widest > limit_;
        }
    }
    frameBefore_ = frames_[size_ - 1].packet;
    median_ = median;
    hasMedian_ = true;
    size_ = 0;
    least_ = std::numeric_limits<std::int64_t>::max();
    most_ = std::numeric_limits<std::int64_t>::min();
}

}  // namespace TalIec61850Analysis::detail
