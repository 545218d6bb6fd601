#pragma once

// Internal: sums of times that may be anything.

#include <cstdint>
#include <limits>

namespace TalIec61850Analysis::detail {

/// A time in nanoseconds since 1970, moved; it stays among those that a capture can have.
/// @param time  not negative
/// @param step  any
[[nodiscard]] constexpr std::int64_t shiftedTime(std::int64_t time, std::int64_t step) noexcept {
    constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
    if (step < 0) {
        return time + step < 0 ? 0 : time + step;
    }
    return time > kLast - step ? kLast : time + step;
}

}  // namespace TalIec61850Analysis::detail
