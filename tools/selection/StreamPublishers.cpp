#include "tools/selection/StreamPublishers.hpp"

#include <TalIec61850Scl/match/MatchStreams.hpp>
#include <algorithm>
#include <cstddef>
#include <optional>

#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::StreamKey;
using TalIec61850Scl::ControlBlock;
using TalIec61850Scl::StationDescription;
using TalIec61850Scl::StreamMatch;

namespace {

ControlBlock const* publisherOf(StationDescription const& station,
                                std::optional<StreamMatch> const& match) {
    return match ? &station.controlBlocks[match->controlBlock] : nullptr;
}

}  // namespace

void StreamPublishers::see(StreamKey const& stream) {
    std::lock_guard const lock(mutex_);
    isSettled_ = !seen_.insert(stream).second && isSettled_;
}

ControlBlock const* StreamPublishers::of(StreamKey const& stream) {
    std::lock_guard const lock(mutex_);
    settle();
    auto const known = known_.find(stream);
    if (known != known_.end()) {
        return known->second;
    }
    auto const* const publisher =
        publisherOf(station_, TalIec61850Scl::matchStream(stream, station_));
    known_.emplace(stream, publisher);
    return publisher;
}

void StreamPublishers::settle() {
    if (isSettled_) {
        return;
    }
    isSettled_ = true;
    known_.clear();
    std::vector<StreamKey> const streams(seen_.begin(), seen_.end());
    auto const matches = TalIec61850Scl::matchStreams(streams, station_);
    for (std::size_t number = 0; number < streams.size(); ++number) {
        known_.emplace(streams[number], publisherOf(station_, matches[number]));
    }
}

bool StreamPublishers::mayBeOf(std::vector<std::string> const& ieds,
                               StreamKey const& stream) const {
    auto const& blocks = station_.controlBlocks;
    return ieds.empty() || std::any_of(blocks.begin(), blocks.end(), [&](auto const& block) {
               return meetsPattern(ieds, block.ied) && TalIec61850Scl::mayBeOf(stream, block);
           });
}

}  // namespace TalIec61850Tools
