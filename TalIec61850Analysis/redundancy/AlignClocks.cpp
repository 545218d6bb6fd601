#include <TalIec61850Analysis/redundancy/AlignClocks.hpp>
#include <TalIec61850Analysis/redundancy/FindTapClocks.hpp>
#include <TalIec61850Analysis/redundancy/RedundantSources.hpp>
#include <algorithm>
#include <cstddef>
#include <vector>

namespace TalIec61850Analysis {

namespace {

/// Whether a capture may have other ways than another one has.
bool mayHaveSeveralTaps(TrafficIndex const& index) {
    return index.files().size() > 1 &&
           std::any_of(index.streams().begin(), index.streams().end(), [](auto const& stream) {
               return std::any_of(
                   stream.parts.begin(), stream.parts.end(),
                   [](StreamPart const& part) { return part.packets.hasRedundancy(); });
           });
}

}  // namespace

std::optional<std::uint32_t> alignClocks(TrafficIndex& index, std::stop_token const& stop) {
    // What is less is taken for time over the network.
    constexpr std::int64_t kLeast = 1'000'000;
    if (!mayHaveSeveralTaps(index)) {
        return std::nullopt;
    }
    detail::RedundantSources const sources(index);
    auto const clocks = detail::findTapClocks(index, sources, stop);
    std::vector<std::int64_t> ahead;
    std::optional<std::uint32_t> reference;
    bool isAnyApart = false;
    for (std::size_t file = 0; file < clocks.size(); ++file) {
        std::int64_t const offset = clocks[file].offset;
        ahead.push_back(offset);
        isAnyApart = isAnyApart || offset >= kLeast || offset <= -kLeast;
        if (!reference && clocks[file].way == detail::kWayA) {
            reference = static_cast<std::uint32_t>(file);
        }
    }
    if (!isAnyApart || stop.stop_requested()) {
        return std::nullopt;
    }
    index.shiftClocks(ahead);
    return reference;
}

}  // namespace TalIec61850Analysis
