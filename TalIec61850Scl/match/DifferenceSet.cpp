#include <TalIec61850Scl/match/DifferenceSet.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Scl::detail {

void DifferenceSet::add(Difference difference) {
    if (!has(difference.kind)) {
        differences_.push_back(std::move(difference));
    }
}

void DifferenceSet::add(std::vector<Difference> const& differences) {
    for (Difference const& difference : differences) {
        add(difference);
    }
}

bool DifferenceSet::has(DifferenceKind kind) const noexcept {
    return std::any_of(differences_.begin(), differences_.end(),
                       [&](Difference const& difference) { return difference.kind == kind; });
}

std::vector<Difference> DifferenceSet::takeSorted() {
    std::sort(differences_.begin(), differences_.end(),
              [](Difference const& a, Difference const& b) { return a.kind < b.kind; });
    return std::exchange(differences_, {});
}

}  // namespace TalIec61850Scl::detail
