#pragma once

// Internal: how a list of spans of time is kept short.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Joins neighbours that a predicate says are to be one.
/// @param isOne  bool isOne(Span const& into, Span const& next)
template <typename Span, typename IsOne, typename Join>
void joinNeighbours(std::vector<Span>& spans, IsOne const& isOne, Join const& join) {
    std::size_t kept = 0;
    for (std::size_t i = 1; i < spans.size(); ++i) {
        if (isOne(spans[kept], spans[i])) {
            join(spans[kept], std::move(spans[i]));
        } else if (++kept != i) {
            spans[kept] = std::move(spans[i]);
        }
    }
    spans.resize(std::min(spans.size(), kept + 1));
}

/// Joins neighbours that are in one part of time, as soon as there are too many of them. Parts are
/// of one length, which doubles until half as many spans are left: the next joining is far away
/// then.
/// @param spans  have members `from` and `to`, in nanoseconds
/// @param most   above 1; lists that are not longer stay as they are
/// @param grain  the length of a part, in nanoseconds; 0 before the first joining
/// @param join   void join(Span& into, Span&& next)
template <typename Span, typename Join>
void joinShortSpans(std::vector<Span>& spans, std::size_t most, std::int64_t& grain,
                    Join const& join) {
    if (spans.size() <= most) {
        return;
    }
    constexpr std::int64_t kCoarsest = std::numeric_limits<std::int64_t>::max() / 2;
    std::size_t const wanted = most / 2;
    auto const isInOnePart = [&](Span const& into, Span const& next) {
        return into.from / grain == (next.to - 1) / grain;
    };
    // What has come since the last joining may be short enough together.
    grain = std::max<std::int64_t>(grain, 1);
    joinNeighbours(spans, isInOnePart, join);
    while (spans.size() > wanted && grain < kCoarsest) {
        grain *= 2;
        joinNeighbours(spans, isInOnePart, join);
    }
    if (spans.size() > wanted) {
        // Times that go to and fro over centuries.
        joinNeighbours(
            spans, [](Span const&, Span const&) { return true; }, join);
    }
}

}  // namespace TalIec61850Analysis::detail
