#pragma once

// Internal: in what one stream and its description differ.

#include <TalIec61850Scl/match/CheckStation.hpp>
#include <vector>

namespace TalIec61850Scl::detail {

/// Differences, each kind once: the first that was added.
class DifferenceSet {
public:
    void add(Difference difference);
    void add(std::vector<Difference> const& differences);

    /// Whether there is one of a kind.
    [[nodiscard]] bool has(DifferenceKind kind) const noexcept;
    /// In the order in which they were added.
    [[nodiscard]] std::vector<Difference> const& differences() const noexcept {
        return differences_;
    }
    /// In the order of their kinds.
    [[nodiscard]] std::vector<Difference> takeSorted();

private:
    std::vector<Difference> differences_;
};

}  // namespace TalIec61850Scl::detail
