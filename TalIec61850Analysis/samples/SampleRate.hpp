#pragma once

#include <cstdint>

namespace TalIec61850Analysis {

/// How many samples a publisher takes: so many in so many seconds.
struct SampleRate {
    /// 0 where the rate is not known.
    std::uint32_t samples = 0;
    /// Seconds for that many; 1 unless there is less than a sample a second.
    std::uint32_t seconds = 1;

    /// Whether the rate is known.
    [[nodiscard]] constexpr bool isKnown() const noexcept { return samples != 0; }
    /// Samples a second.
    [[nodiscard]] constexpr double perSecond() const noexcept {
        return static_cast<double>(samples) / static_cast<double>(seconds);
    }
    /// Nanoseconds from sample to sample; 0 where the rate is not known.
    [[nodiscard]] constexpr double interval() const noexcept {
        return isKnown() ? 1e9 / perSecond() : 0;
    }
    /// When a sample is due, in nanoseconds after sample 0, cut to whole ones.
    /// @pre isKnown()
    /// @param number  of the sample; not negative, and at most 292 years after sample 0
    [[nodiscard]] constexpr std::int64_t timeOf(std::int64_t number) const noexcept {
        constexpr std::int64_t kNanoseconds = 1'000'000'000;
        std::int64_t const each = samples;
        std::int64_t const rest = number % each * seconds;
        return (number / each * seconds + rest / each) * kNanoseconds +
               rest % each * kNanoseconds / each;
    }

    /// Member by member.
    friend bool operator==(SampleRate const&, SampleRate const&) = default;
};

/// What tells a rate.
enum class RateSource : std::uint8_t {
    none,      ///< nothing does
    given,     ///< the caller
    counter,   ///< the largest smpCnt before it begins again
    declared,  ///< smpRate and smpMod
    standard,  ///< arrival, and that it is one of the rates that standards name
    arrival,   ///< arrival alone
};

}  // namespace TalIec61850Analysis
