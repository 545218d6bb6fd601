#include <TalIec61850Analysis/redundancy/WatchedTime.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <algorithm>
#include <map>

namespace TalIec61850Analysis::detail {

WatchedTime::WatchedTime(TrafficIndex const& index, RedundantSources const& sources,
                         std::span<TapClock const> clocks) {
    constexpr std::int64_t kFilePause = 1'000'000'000;
    auto const spansOfFiles = [&](std::vector<std::uint32_t> const& files) {
        Spans all;
        for (std::uint32_t const file : files) {
            CaptureSummary const& summary = index.files()[file].summary;
            if (summary.first && summary.last) {
                auto const timeOf = [&](CaptureTime time) {
                    return shiftedTime(time.time_since_epoch().count(), -clocks[file].offset);
                };
                all.push_back({.first = timeOf(*summary.first), .last = timeOf(*summary.last)});
            }
        }
        std::sort(all.begin(), all.end(),
                  [](Span const& a, Span const& b) { return a.first < b.first; });
        Spans joined;
        for (Span const& span : all) {
            if (!joined.empty() && (span.first <= joined.back().last ||
                                    span.first - joined.back().last <= kFilePause)) {
                joined.back().last = std::max(joined.back().last, span.last);
            } else {
                joined.push_back(span);
            }
        }
        return joined;
    };
    std::map<std::vector<std::uint32_t>, std::size_t> known;
    for (RedundantSources::Source const& source : sources.sources()) {
        auto& of = spansOf_.emplace_back();
        for (std::size_t const way : {kWayA, kWayB}) {
            auto const [at, isNew] = known.emplace(source.files.at(way), spans_.size());
            if (isNew) {
                spans_.push_back(spansOfFiles(source.files.at(way)));
            }
            of.at(way) = at->second;
        }
    }
}

bool WatchedTime::isWatched(std::uint32_t source, std::size_t way, std::int64_t time) const {
    constexpr std::int64_t kEnd = 400'000'000;
    Spans const& spans = spans_[spansOf_[source].at(way)];
    auto const after =
        std::upper_bound(spans.begin(), spans.end(), time,
                         [](std::int64_t value, Span const& span) { return value < span.first; });
    if (after == spans.begin()) {
        return false;
    }
    Span const& span = *(after - 1);
    // Within the span the differences are not below 0.
    return time <= span.last && time - span.first > kEnd && span.last - time > kEnd;
}

}  // namespace TalIec61850Analysis::detail
