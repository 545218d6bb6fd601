#pragma once

// Internal: extremes and percentiles of numbers that come one by one.

#include <TalIec61850Analysis/redundancy/CopyCounts.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Counts how often each value comes. Up to kMostValues different ones are kept apart, whatever
/// their number; beyond that, those next to one another are taken together.
class DifferenceTally {
public:
    /// 32 MiB; paths of a network make far fewer.
    static constexpr std::size_t kMostValues = std::size_t{1} << 21U;

    void add(std::int64_t value);

    /// Percentiles by nearest rank; not set without values.
    [[nodiscard]] std::optional<TimeDifferences> result();

private:
    struct Bin {
        std::int64_t value = 0;
        std::uint64_t count = 0;
    };

    void settle();
    void coarsen();
    [[nodiscard]] std::int64_t rounded(std::int64_t value) const;
    [[nodiscard]] std::int64_t percentile(unsigned percent) const;

    std::vector<std::int64_t> recent_;
    /// In the order of their values.
    std::vector<Bin> bins_;
    /// Bits of a value that are not kept.
    unsigned shift_ = 0;
    std::uint64_t count_ = 0;
    std::int64_t min_ = 0;
    std::int64_t max_ = 0;
};

}  // namespace TalIec61850Analysis::detail
