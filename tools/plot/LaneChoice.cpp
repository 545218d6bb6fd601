#include "tools/plot/LaneChoice.hpp"

#include <algorithm>
#include <utility>

#include "tools/render/PictureLanes.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::LaneOptions;
using TalIec61850Analysis::MemberLanes;
using TalIec61850Analysis::TimeWindow;
using TalIec61850Analysis::TrafficIndex;

void LaneChoice::add(PlottedStates states) {
    auto& lanes = states.lanes;
    auto const changing = static_cast<std::size_t>(std::count_if(
        lanes.begin(), lanes.end(), [](PlottedLane const& each) { return isChanging(each.lane); }));
    if (changing > 0) {
        unchanging_ += lanes.size() - changing;
        std::erase_if(lanes, [](PlottedLane const& each) { return !isChanging(each.lane); });
    }
    if (!lanes.empty()) {
        streams_.push_back(std::move(states));
        prune();
    }
}

void LaneChoice::prune() {
    std::size_t room = mostLanes_;
    std::vector<std::size_t> kept(streams_.size(), 0);
    std::size_t streams = 0;
    // Either all lanes of a stream change, or none does.
    for (bool const changes : {true, false}) {
        for (std::size_t i = 0; i < streams_.size(); ++i) {
            auto const& lanes = streams_[i].lanes;
            if (isChanging(lanes.front().lane) == changes && streams < mostStreams_ && room > 0) {
                kept[i] = std::min(room, lanes.size());
                room -= kept[i];
                ++streams;
            }
        }
    }
    for (std::size_t i = 0; i < streams_.size(); ++i) {
        auto& lanes = streams_[i].lanes;
        withoutRoom_ += lanes.size() - kept[i];
        lanes.erase(lanes.begin() + static_cast<std::ptrdiff_t>(kept[i]), lanes.end());
    }
    std::erase_if(streams_, [](PlottedStates const& each) { return each.lanes.empty(); });
}

ReadLanesResult readLanes(TrafficIndex const& index, std::size_t stream, TimeWindow const& window,
                          std::size_t mostIntervals, PictureNames const& names) {
    LaneOptions options;
    options.window = window;
    options.mostIntervals = mostIntervals;
    MemberLanes const all = readMemberLanes(index, stream, options);
    PictureLanes const chosen = pictureLanes(all, all.lanes.size());
    auto const& known = index.streams()[stream];
    ReadLanesResult result;
    result.leftOut = chosen.leftOut;
    result.states.name = names.of(known);
    for (PictureLane const& each : chosen.lanes) {
        result.states.lanes.push_back({.name = names.of(known, each.lane->member),
                                       .lane = *each.lane,
                                       .bad = badTimes(each)});
    }
    return result;
}

}  // namespace TalIec61850Tools
