#include <TalIec61850Analysis/supervision/SortFindings.hpp>
#include <algorithm>
#include <cstddef>
#include <numeric>
#include <tuple>
#include <utility>

namespace TalIec61850Analysis::detail {

std::vector<Finding> sortedByTime(std::vector<Finding> findings) {
    // Findings are large: each is moved once.
    std::vector<std::size_t> order(findings.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        Finding const& first = findings[a];
        Finding const& second = findings[b];
        return std::tie(first.from, first.stream, first.kind) <
               std::tie(second.from, second.stream, second.kind);
    });
    std::vector<Finding> sorted;
    sorted.reserve(findings.size());
    for (std::size_t const number : order) {
        sorted.push_back(std::move(findings[number]));
    }
    return sorted;
}

}  // namespace TalIec61850Analysis::detail
