#pragma once

// Internal: how numbers are distributed.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Counts of numbers, in classes that are right to 1 %, whatever their size.
class Histogram {
public:
    void add(std::uint64_t number) {
        ++counts_[classOf(number)];
        ++count_;
        largest_ = std::max(largest_, number);
    }

    /// How many numbers there are.
    [[nodiscard]] std::uint64_t count() const { return count_; }
    /// The largest of them, exact; 0 of none.
    [[nodiscard]] std::uint64_t largest() const { return largest_; }

    /// A number that a share of all are not above, right to 1 %; 0 of none.
    [[nodiscard]] std::int64_t percentile(unsigned percent) const {
        std::uint64_t const wanted = (count_ * percent + 99) / 100;
        std::uint64_t passed = 0;
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            passed += counts_[i];
            if (passed >= wanted) {
                return static_cast<std::int64_t>(startOf(i));
            }
        }
        return 0;
    }

private:
    /// Bits of a number that its class keeps below the highest one.
    static constexpr unsigned kBits = 7;
    static constexpr std::size_t kFine = std::size_t{1} << kBits;

    static std::size_t classOf(std::uint64_t number) {
        if (number < kFine) {
            return number;
        }
        auto const shift = static_cast<unsigned>(std::bit_width(number)) - 1 - kBits;
        return (std::size_t{shift} + 1) * kFine + (number >> shift) - kFine;
    }
    static std::uint64_t startOf(std::size_t number) {
        if (number < kFine) {
            return number;
        }
        std::size_t const shift = number / kFine - 1;
        return (std::uint64_t{number % kFine} + kFine) << shift;
    }

    std::vector<std::uint64_t> counts_ = std::vector<std::uint64_t>((64 - kBits + 1) * kFine);
    std::uint64_t count_ = 0;
    std::uint64_t largest_ = 0;
};

}  // namespace TalIec61850Analysis::detail
