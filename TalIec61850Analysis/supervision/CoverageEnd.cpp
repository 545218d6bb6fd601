#include <TalIec61850Analysis/supervision/CoverageEnd.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

namespace {

/// The latest packet of a file after a place in it, of all streams.
std::int64_t lastAfter(TrafficIndex const& index, std::uint32_t file, std::uint64_t fileOffset) {
    std::int64_t last = kNoTime;
    for (TrafficStream const& stream : index.streams()) {
        for (StreamPart const& part : stream.parts) {
            auto const offsets = part.packets.frameOffsets();
            for (std::size_t i = offsets.size();
                 part.file == file && i > 0 && offsets[i - 1] > fileOffset; --i) {
                last = std::max(last, part.packets.times()[i - 1]);
            }
        }
    }
    return last;
}

}  // namespace

CoverageEnd::CoverageEnd(TrafficIndex const& index,
                         std::vector<std::vector<ClockStep>> const& steps) {
    constexpr std::int64_t kSecond = 1'000'000'000;
    std::vector<Span> all;
    for (std::uint32_t file = 0; file < index.files().size(); ++file) {
        isStepped_.push_back(!steps[file].empty());
        isAnyStepped_ = isAnyStepped_ || isStepped_.back();
        CaptureSummary const& summary = index.files()[file].summary;
        if (summary.first && summary.last) {
            all.push_back({.first = summary.first->time_since_epoch().count(),
                           .last = steps[file].empty()
                                       ? summary.last->time_since_epoch().count()
                                       : lastAfter(index, file, steps[file].back().fileOffset)});
        }
    }
    std::erase_if(all, [](Span const& span) { return span.last == kNoTime; });
    std::sort(all.begin(), all.end(),
              [](Span const& a, Span const& b) { return a.first < b.first; });
    for (Span const& span : all) {
        if (!spans_.empty() &&
            (span.first <= spans_.back().last || span.first - spans_.back().last <= kSecond)) {
            spans_.back().last = std::max(spans_.back().last, span.last);
        } else {
            spans_.push_back(span);
        }
    }
}

std::int64_t CoverageEnd::of(TrafficStream const& stream) const {
    std::int64_t last = kNoTime;
    for (StreamPart const& part : stream.parts) {
        PacketColumns const& packets = part.packets;
        if (std::size_t const size = packets.timedSize(); size > 0) {
            std::size_t const newest =
                isStepped_[part.file] ? packets.size() - 1 : packets.inTimeOrder(size - 1);
            last = std::max(last, packets.times()[newest]);
        }
    }
    auto const span = std::find_if(spans_.begin(), spans_.end(),
                                   [&](Span const& each) { return each.last >= last; });
    return last == kNoTime || span == spans_.end() ? kNoTime : span->last;
}

bool CoverageEnd::isHoleBetween(std::int64_t from, std::int64_t until) const {
    if (isAnyStepped_ || from == kNoTime || until == kNoTime) {
        return false;
    }
    auto const span = std::find_if(spans_.begin(), spans_.end(),
                                   [&](Span const& each) { return each.last >= from; });
    return span != spans_.end() && span->last < until;
}

}  // namespace TalIec61850Analysis::detail
