#include <TalIec61850Analysis/traffic/StreamWays.hpp>
#include <algorithm>
#include <cstddef>

namespace TalIec61850Analysis::detail {

namespace {

struct PartSpan {
    std::uint32_t part = 0;
    std::int64_t first = kNoTime;
    std::int64_t last = kNoTime;
};

/// From the first packet to the last, without those that an earlier file has.
PartSpan partSpanOf(std::uint32_t number, StreamPart const& part) {
    PacketColumns const& packets = part.packets;
    std::size_t const size = packets.timedSize();
    std::size_t first = 0;
    while (first < size && packets.flags()[packets.inTimeOrder(first)].isDuplicate()) {
        ++first;
    }
    std::size_t last = size;
    while (last > first && packets.flags()[packets.inTimeOrder(last - 1)].isDuplicate()) {
        --last;
    }
    if (first == last) {
        return {.part = number};
    }
    return {.part = number,
            .first = packets.times()[packets.inTimeOrder(first)],
            .last = packets.times()[packets.inTimeOrder(last - 1)]};
}

}  // namespace

StreamWays::StreamWays(TrafficStream const& stream) : taps_(stream.parts.size()) {
    std::vector<PartSpan> spans;
    for (std::uint32_t part = 0; part < stream.parts.size(); ++part) {
        PacketColumns const& packets = stream.parts[part].packets;
        areSeveral_ = areSeveral_ || packets.hasRedundancy() || packets.hasTrailerMisfit();
        spans.push_back(partSpanOf(part, stream.parts[part]));
    }
    std::stable_sort(spans.begin(), spans.end(),
                     [](PartSpan const& a, PartSpan const& b) { return a.first < b.first; });
    // Each tap goes on where the file before has ended.
    constexpr unsigned kMostTaps = 1024;
    std::vector<std::int64_t> ends;
    for (PartSpan const& span : spans) {
        auto const free = std::find_if(ends.begin(), ends.end(),
                                       [&](std::int64_t end) { return end <= span.first; });
        auto const tap = static_cast<unsigned>(free - ends.begin());
        taps_[span.part] = std::min(tap, kMostTaps);
        if (free == ends.end()) {
            ends.push_back(span.last);
        } else {
            *free = span.last;
        }
    }
    areSeveral_ = areSeveral_ || ends.size() > 1;
}

std::vector<bool> StreamWays::areOfFirstTap() const {
    std::vector<bool> are;
    for (unsigned const tap : taps_) {
        are.push_back(tap == 0);
    }
    return are;
}

}  // namespace TalIec61850Analysis::detail
