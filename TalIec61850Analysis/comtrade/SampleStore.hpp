#pragma once

// Internal: samples as the numbers that are stored.

#include <TalIec61850Analysis/comtrade/ComtradeRows.hpp>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

namespace TalIec61850Analysis::detail {

/// Makes the numbers that one channel's samples are stored as.
class SampleStore {
public:
    SampleStore(ComtradeFormat format, ComtradeStep step) noexcept
        : range_(comtradeRange(format)),
          step_(step),
          shiftsExactly_(std::abs(step.middle) < 0x1p63 && std::trunc(step.middle) == step.middle),
          shift_(shiftsExactly_ ? static_cast<std::int64_t>(step.middle) : 0) {}

    /// Makes the numbers, and counts what they lose.
    /// @param missing  as long as the samples, or empty
    /// @param put      called with each row of the block and its number
    template <typename Raw, typename Put>
    void store(std::span<Raw const> samples, std::span<std::uint8_t const> missing,
               ComtradeLosses& losses, Put put) const {
        // Counted here, so that the counters can stay in registers.
        ComtradeLosses counted;
        if (std::is_same_v<Raw, std::int32_t> && isKept()) {
            storeEach(samples, missing, put, [&](Raw raw) { return kept(raw, counted); });
        } else if (std::is_integral_v<Raw> && shiftsExactly_ && step_.size == 1) {
            storeEach(samples, missing, put, [&](Raw raw) { return shifted(raw, counted); });
        } else {
            storeEach(samples, missing, put, [&](Raw raw) { return rounded(raw, counted); });
        }
        losses.clamped += counted.clamped;
        losses.notANumber += counted.notANumber;
    }

private:
    /// Whether integers of 32 bits are stored as they are, but for the lowest one.
    [[nodiscard]] bool isKept() const {
        using Limits = std::numeric_limits<std::int32_t>;
        return shiftsExactly_ && shift_ == 0 && step_.size == 1 &&
               range_.lowest == Limits::min() + 1 && range_.highest == Limits::max();
    }

    /// The same number as `shifted` gives, without a branch: all rows of a block are alike.
    template <typename Raw>
    [[nodiscard]] static std::int64_t kept(Raw raw, ComtradeLosses& losses) {
        constexpr auto kLowest = std::numeric_limits<std::int32_t>::min();
        bool const isLowest = raw == static_cast<Raw>(kLowest);
        losses.clamped += isLowest ? 1U : 0U;
        return static_cast<std::int64_t>(raw) + (isLowest ? 1 : 0);
    }

    template <typename Raw, typename Put, typename Number>
    void storeEach(std::span<Raw const> samples, std::span<std::uint8_t const> missing, Put put,
                   Number number) const {
        if (missing.empty()) {
            for (std::size_t row = 0; row < samples.size(); ++row) {
                put(row, number(samples[row]));
            }
            return;
        }
        for (std::size_t row = 0; row < samples.size(); ++row) {
            put(row, missing[row] != 0 ? range_.missing : number(samples[row]));
        }
    }

    /// An integer less the shift; the end of all integers where that is none.
    template <typename Raw>
    [[nodiscard]] std::int64_t difference(Raw raw) const {
        std::int64_t result = 0;
        if (__builtin_sub_overflow(static_cast<std::int64_t>(raw), shift_, &result)) {
            return shift_ > 0 ? std::numeric_limits<std::int64_t>::min()
                              : std::numeric_limits<std::int64_t>::max();
        }
        return result;
    }

    template <typename Raw>
    [[nodiscard]] std::int64_t shifted(Raw raw, ComtradeLosses& losses) const {
        std::int64_t const number = difference(raw);
        if (range_.contains(number)) {
            return number;
        }
        ++losses.clamped;
        return number < range_.lowest ? range_.lowest : range_.highest;
    }

    template <typename Raw>
    [[nodiscard]] double quotient(Raw raw) const {
        if constexpr (std::is_integral_v<Raw>) {
            std::int64_t exact = 0;
            if (shiftsExactly_ &&
                !__builtin_sub_overflow(static_cast<std::int64_t>(raw), shift_, &exact)) {
                return static_cast<double>(exact) / step_.size;
            }
        }
        return (static_cast<double>(raw) - step_.middle) / step_.size;
    }

    template <typename Raw>
    [[nodiscard]] std::int64_t rounded(Raw raw, ComtradeLosses& losses) const {
        double const number = std::round(quotient(raw));
        if (std::isnan(number)) {
            ++losses.notANumber;
            return range_.missing;
        }
        if (number < static_cast<double>(range_.lowest)) {
            ++losses.clamped;
            return range_.lowest;
        }
        if (number > static_cast<double>(range_.highest)) {
            ++losses.clamped;
            return range_.highest;
        }
        return static_cast<std::int64_t>(number);
    }

    ComtradeRange range_;
    ComtradeStep step_;
    bool shiftsExactly_;
    std::int64_t shift_;
};

}  // namespace TalIec61850Analysis::detail
