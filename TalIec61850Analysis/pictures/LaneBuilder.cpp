#include <TalIec61850Analysis/events/ValueWalk.hpp>
#include <TalIec61850Analysis/pictures/JoinShortSpans.hpp>
#include <TalIec61850Analysis/pictures/LaneBuilder.hpp>
#include <algorithm>
#include <limits>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

constexpr std::size_t kFewestIntervals = 16;
/// As many members that are in no lane are told from each other.
constexpr std::size_t kMostLeftOut = 65'536;

void joinIntervals(LaneInterval& into, LaneInterval const& next) {
    into.to = next.to;
    into.state = LaneState::several;
    into.value.reset();
    into.joined += next.joined;
}

}  // namespace

LaneBuilder::LaneBuilder(LaneOptions const& options)
    : mostLanes_(options.mostLanes),
      mostIntervals_(std::max(options.mostIntervals, kFewestIntervals)),
      from_(options.window.from ? nanosecondsOf(*options.window.from)
                                : std::numeric_limits<std::int64_t>::min()),
      end_(options.window.to ? afterTime(nanosecondsOf(*options.window.to))
                             : std::numeric_limits<std::int64_t>::max()) {}

LaneBuilder::Lane* LaneBuilder::laneOf(std::vector<std::uint32_t> const& member) {
    auto const known = numbers_.find(member);
    if (known != numbers_.end()) {
        return known->second < lanes_.size() ? &lanes_[known->second] : nullptr;
    }
    bool const isLeftOut = lanes_.size() >= mostLanes_;
    if (isLeftOut) {
        if (leftOut_ < kMostLeftOut) {
            ++leftOut_;
            numbers_.emplace(member, std::numeric_limits<std::size_t>::max());
        }
        return nullptr;
    }
    numbers_.emplace(member, lanes_.size());
    Lane& lane = lanes_.emplace_back();
    lane.lane.member = member;
    return &lane;
}

void LaneBuilder::setValues(std::optional<Elements> const& values) {
    areRead_ = values.has_value();
    if (!values) {
        return;
    }
    for (Lane& lane : lanes_) {
        lane.isThere = false;
    }
    for (ValueWalk walk(*values); !walk.isOver(); walk.next()) {
        Lane* const lane = laneOf(walk.path());
        if (lane == nullptr) {
            continue;
        }
        ElementView const& element = walk.element();
        std::uint8_t const tag = element.tag.value_or(std::uint8_t{0});
        lane->isThere = true;
        if (lane->tag != tag || !std::ranges::equal(lane->octets, element.octets)) {
            lane->tag = tag;
            lane->octets = toOwned(element.octets);
            lane->value = walk.value();
            lane->isValueAdded = false;
        }
    }
}

void LaneBuilder::append(Lane& lane, std::int64_t from, std::int64_t to, LaneState state) const {
    auto& intervals = lane.lane.intervals;
    bool const isKnown = state == LaneState::known;
    bool const goesOn = !intervals.empty() && intervals.back().to == from &&
                        intervals.back().state == state && (!isKnown || lane.isValueAdded);
    if (goesOn) {
        intervals.back().to = to;
        return;
    }
    intervals.push_back({.from = from,
                         .to = to,
                         .state = state,
                         .value = isKnown ? std::optional(lane.value) : std::nullopt});
    lane.isValueAdded = isKnown;
    joinShortSpans(intervals, mostIntervals_, lane.grain, joinIntervals);
}

void LaneBuilder::goOn(std::int64_t to, LaneState state) {
    if (to <= until_) {
        return;
    }
    std::int64_t const from = std::max(until_, from_);
    std::int64_t const end = std::min(to, end_);
    bool const isFirst = std::exchange(until_, to) == kNoTime;
    if (isFirst || from >= end) {
        return;
    }
    for (Lane& lane : lanes_) {
        if (lane.isThere) {
            bool const isUnread = state == LaneState::known && !areRead_;
            append(lane, from, end, isUnread ? LaneState::unread : state);
        }
    }
}

MemberLanes LaneBuilder::take() {
    MemberLanes made;
    made.leftOut = leftOut_;
    for (Lane& lane : lanes_) {
        if (!lane.lane.intervals.empty()) {
            made.lanes.push_back(std::move(lane.lane));
        }
    }
    return made;
}

}  // namespace TalIec61850Analysis::detail
