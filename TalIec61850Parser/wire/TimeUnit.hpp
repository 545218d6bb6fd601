#pragma once

// Internal: the unit in which an interface of a next-generation capture counts time.

#include <cstdint>
#include <limits>
#include <optional>

namespace TalIec61850Parser::wire {

/// A unit of 10^-n or 2^-n seconds, and where zero is. Times come out as nanoseconds since 1970,
/// cut where the unit is finer; a time before 1970, or of 2^63 nanoseconds and more, has none.
class TimeUnit {
public:
    /// Microseconds since 1970.
    TimeUnit() { setFast(); }

    /// @param resolution     the octet of the option: n, its high bit set for powers of two
    /// @param offsetSeconds  what is added to each time
    TimeUnit(std::uint8_t resolution, std::int64_t offsetSeconds)
        : isBinary_((resolution & 0x80U) != 0),
          exponent_(resolution & 0x7FU),
          offset_(offsetSeconds) {
        setFast();
    }

    [[nodiscard]] bool isBinary() const { return isBinary_; }
    [[nodiscard]] std::uint8_t exponent() const { return exponent_; }

    /// Whether a second can be counted in 64 bits. Where not, no time can be told.
    [[nodiscard]] bool isUsable() const { return exponent_ <= (isBinary_ ? 63U : 19U); }

    [[nodiscard]] std::optional<std::int64_t> nanoseconds(std::uint64_t units) const {
        if (fastFactor_ != 0 && units <= fastLimit_) {
            return static_cast<std::int64_t>(units * fastFactor_);
        }
        return isUsable() ? nanosecondsByParts(units) : std::nullopt;
    }

private:
    static constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
    static constexpr std::uint64_t kLatest = std::numeric_limits<std::int64_t>::max();

    /// 10^-9 s and coarser, counted since 1970, take a multiplication: nearly all captures.
    void setFast() {
        if (!isBinary_ && exponent_ <= 9 && offset_ == 0) {
            fastFactor_ = power(9U - exponent_);
            fastLimit_ = kLatest / fastFactor_;
        }
    }

    [[nodiscard]] static constexpr std::uint64_t power(unsigned exponent) {
        std::uint64_t result = 1;
        for (; exponent > 0; --exponent) {
            result *= 10;
        }
        return result;
    }

    [[nodiscard]] std::optional<std::int64_t> nanosecondsByParts(std::uint64_t units) const {
        auto const seconds = withOffset(isBinary_ ? units >> exponent_ : units / power(exponent_));
        if (!seconds) {
            return std::nullopt;
        }
        std::uint64_t const whole = *seconds * kNanosecondsPerSecond;
        std::uint64_t const part = isBinary_ ? binaryFraction(units) : decimalFraction(units);
        if (part > kLatest - whole) {
            return std::nullopt;
        }
        return static_cast<std::int64_t>(whole + part);
    }

    /// @return nullopt before 1970, and where nanoseconds do not fit
    [[nodiscard]] std::optional<std::uint64_t> withOffset(std::uint64_t seconds) const {
        constexpr std::uint64_t latest = kLatest / kNanosecondsPerSecond;
        auto const offset = static_cast<std::uint64_t>(offset_);
        // Both below 2^64, so that a carry shows.
        std::uint64_t const sum = seconds + offset;
        bool const isBelow = offset_ < 0 && seconds < std::uint64_t{0} - offset;
        bool const isAbove = offset_ >= 0 && sum < seconds;
        return isBelow || isAbove || sum > latest ? std::nullopt : std::optional(sum);
    }

    [[nodiscard]] std::uint64_t decimalFraction(std::uint64_t units) const {
        std::uint64_t const rest = units % power(exponent_);
        return exponent_ <= 9 ? rest * power(9U - exponent_) : rest / power(exponent_ - 9U);
    }

    [[nodiscard]] std::uint64_t binaryFraction(std::uint64_t units) const {
        std::uint64_t const rest = units & ((std::uint64_t{1} << exponent_) - 1);
        if (exponent_ <= 32) {
            return rest * kNanosecondsPerSecond >> exponent_;
        }
        // In two halves, as the product may take 93 bits.
        unsigned const low = exponent_ - 32U;
        std::uint64_t const lower = rest & ((std::uint64_t{1} << low) - 1);
        std::uint64_t const carried = lower * kNanosecondsPerSecond >> low;
        return ((rest >> low) * kNanosecondsPerSecond + carried) >> 32U;
    }

    bool isBinary_ = false;
    std::uint8_t exponent_ = 6;
    std::int64_t offset_ = 0;
    /// Nanoseconds of a unit, where that is all there is to a time; otherwise 0.
    std::uint64_t fastFactor_ = 0;
    /// The last time that is told by multiplying.
    std::uint64_t fastLimit_ = 0;
};

}  // namespace TalIec61850Parser::wire
