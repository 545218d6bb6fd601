#pragma once

// Internal: one hash of several values.

#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// Joins values; their order counts.
class JoinedHash {
public:
    void add(std::uint64_t value) {
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15U;
        sum_ = (sum_ ^ value) * kFactor;
        sum_ ^= sum_ >> 32U;
    }
    [[nodiscard]] std::size_t result() const { return sum_; }

private:
    std::uint64_t sum_ = 0;
};

}  // namespace TalIec61850Analysis::detail
