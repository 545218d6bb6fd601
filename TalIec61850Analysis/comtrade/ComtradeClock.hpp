#pragma once

// Internal: the stamps of rows.

#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <cstdint>
#include <limits>

namespace TalIec61850Analysis::detail {

/// What a stamp of 32 bits is where it is not known.
inline constexpr std::uint32_t kMissingStamp = std::numeric_limits<std::uint32_t>::max();

/// Whether the last row's time is an instant that `CaptureTime` has.
[[nodiscard]] bool endsInTime(ComtradeRecord const& record) noexcept;

/// Gives the stamps of rows, one after the other: how long after the first row they are, rounded to
/// the nearest unit.
class ComtradeClock {
public:
    /// @param record  one that can be written
    explicit ComtradeClock(ComtradeRecord const& record) noexcept;

    /// Stamps, and the start, are in nanoseconds; else in microseconds.
    [[nodiscard]] bool isInNanoseconds() const noexcept { return isInNanoseconds_; }

    /// How many of these units a stamp counts in. It is 1 unless the text of a stamp would be
    /// longer than ASCII data may have it: an empty stamp is nothing that all programs read.
    [[nodiscard]] std::uint64_t multiplier() const noexcept { return multiplier_; }

    /// The next row's stamp; `kMissingStamp` for all rows where 32 bits do not hold the last one's
    /// and the data are binary.
    [[nodiscard]] std::uint64_t next() noexcept {
        std::uint64_t const stamp = stamp_;
        stamp_ += whole_;
        part_ += remainder_;
        if (part_ >= divisor_) {
            part_ -= divisor_;
            ++stamp_;
        }
        return stamp;
    }

private:
    void stay() noexcept;

    bool isInNanoseconds_ = false;
    std::uint64_t multiplier_ = 1;
    std::uint64_t stamp_ = 0;
    /// What is left of the stamp, in parts of the divisor. From half a unit on, so that cutting
    /// rounds.
    std::uint64_t part_ = 0;
    std::uint64_t whole_ = 0;
    std::uint64_t remainder_ = 0;
    std::uint64_t divisor_ = 1;
};

}  // namespace TalIec61850Analysis::detail
