#pragma once

// Internal: one hash of several values.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace TalIec61850Analysis::detail {

/// Joins values; their order counts. What it begins with is drawn once in each run of the program,
/// so that no capture can be written whose values share one hash: looking them up would take time
/// that grows with the square of their number.
class JoinedHash {
public:
    JoinedHash() : sum_(secret().start), multiplier_(secret().multiplier) {}

    void add(std::uint64_t value) {
        // Both halves of the product, so that each bit of the value counts for all of the sum.
        Product const product = Product{sum_ ^ value} * multiplier_;
        sum_ = static_cast<std::uint64_t>(product >> 64U) ^ static_cast<std::uint64_t>(product);
    }
    void add(Octets octets);
    void add(std::string_view text);

    [[nodiscard]] std::size_t result() const { return sum_; }

private:
    // NOLINTNEXTLINE(modernize-use-using): a using cannot be marked as an extension
    __extension__ typedef unsigned __int128 Product;

    struct Secret {
        std::uint64_t start = 0;
        /// Odd.
        std::uint64_t multiplier = 1;
    };
    /// The same until the program ends.
    [[nodiscard]] static Secret const& secret();

    std::uint64_t sum_;
    std::uint64_t multiplier_;
};

}  // namespace TalIec61850Analysis::detail
