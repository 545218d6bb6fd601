#include <TalIec61850Analysis/redundancy/DifferenceTally.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Analysis::detail {

void DifferenceTally::add(std::int64_t value) {
    // Sorting them in costs little for each where there are as many as half of the others.
    constexpr std::size_t kFewest = 1024;
    min_ = count_ == 0 ? value : std::min(min_, value);
    max_ = count_ == 0 ? value : std::max(max_, value);
    ++count_;
    recent_.push_back(value);
    if (recent_.size() >= std::max(kFewest, bins_.size() / 2)) {
        settle();
    }
}

std::int64_t DifferenceTally::rounded(std::int64_t value) const {
    // Towards smaller ones, those below 0 as well.
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(value >> shift_) << shift_);
}

void DifferenceTally::settle() {
    std::sort(recent_.begin(), recent_.end());
    std::vector<Bin> joined;
    joined.reserve(bins_.size());
    auto const put = [&](std::int64_t value, std::uint64_t count) {
        if (!joined.empty() && joined.back().value == value) {
            joined.back().count += count;
        } else {
            joined.push_back({value, count});
        }
    };
    auto bin = bins_.begin();
    for (std::int64_t const each : recent_) {
        std::int64_t const value = rounded(each);
        for (; bin != bins_.end() && bin->value <= value; ++bin) {
            put(bin->value, bin->count);
        }
        put(value, 1);
    }
    for (; bin != bins_.end(); ++bin) {
        put(bin->value, bin->count);
    }
    recent_.clear();
    bins_ = std::move(joined);
    while (bins_.size() > kMostValues) {
        coarsen();
    }
}

void DifferenceTally::coarsen() {
    ++shift_;
    std::size_t kept = 0;
    for (Bin const& bin : bins_) {
        std::int64_t const value = rounded(bin.value);
        if (kept > 0 && bins_[kept - 1].value == value) {
            bins_[kept - 1].count += bin.count;
        } else {
            bins_[kept++] = {value, bin.count};
        }
    }
    bins_.resize(kept);
}

std::int64_t DifferenceTally::percentile(unsigned percent) const {
    constexpr std::uint64_t kAll = 100;
    // Rounded up, without the product that may be too large.
    std::uint64_t const rank =
        count_ / kAll * percent + (count_ % kAll * percent + kAll - 1) / kAll;
    std::uint64_t passed = 0;
    for (Bin const& bin : bins_) {
        passed += bin.count;
        if (passed >= rank) {
            return std::clamp(bin.value, min_, max_);
        }
    }
    return max_;
}

std::optional<TimeDifferences> DifferenceTally::result() {
    constexpr unsigned kMedian = 50;
    constexpr unsigned kMost = 99;
    if (count_ == 0) {
        return std::nullopt;
    }
    settle();
    return TimeDifferences{
        .min = min_, .p50 = percentile(kMedian), .p99 = percentile(kMost), .max = max_};
}

}  // namespace TalIec61850Analysis::detail
