#include "tools/render/PictureLanes.hpp"

#include <TalIec61850Analysis/packet/Quality.hpp>
#include <algorithm>
#include <optional>
#include <string_view>
#include <variant>

#include "tools/output/TextEscape.hpp"
#include "tools/render/DataText.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::LaneInterval;
using TalIec61850Analysis::LaneState;
using TalIec61850Analysis::MemberLane;
using TalIec61850Analysis::MemberLanes;
using TalIec61850Analysis::readQuality;
using TalIec61850Analysis::toView;

namespace {

std::optional<Quality> qualityOf(DataValue const& value) {
    auto const* const bits = std::get_if<BitString>(&value.value);
    return value.kind == DataKind::bitString && bits != nullptr ? readQuality(toView(*bits))
                                                                : std::nullopt;
}

/// The first value that is known of a member; null without any.
DataValue const* firstValue(MemberLane const& lane) {
    for (LaneInterval const& interval : lane.intervals) {
        if (interval.value) {
            return &*interval.value;
        }
    }
    return nullptr;
}

bool isQuality(MemberLane const& lane) {
    DataValue const* const value = firstValue(lane);
    return value != nullptr && qualityOf(*value).has_value();
}

bool isTimeStamp(MemberLane const& lane) {
    DataValue const* const value = firstValue(lane);
    return value != nullptr && std::holds_alternative<UtcTime>(value->value);
}

/// Whether a member is the next one of the same structure.
bool isNext(std::vector<std::uint32_t> const& member, std::vector<std::uint32_t> const& other) {
    return !member.empty() && member.size() == other.size() &&
           std::equal(member.begin(), member.end() - 1, other.begin()) &&
           member.back() + 1 == other.back();
}

}  // namespace

PictureLanes pictureLanes(MemberLanes const& all, std::size_t most) {
    auto const& lanes = all.lanes;
    std::vector<std::size_t> chosen;
    std::size_t drawable = 0;
    for (std::size_t i = 0; i < lanes.size(); ++i) {
        if (isQuality(lanes[i]) || isTimeStamp(lanes[i])) {
            continue;
        }
        ++drawable;
        if (!lanes[i].intervals.empty()) {
            chosen.push_back(i);
        }
    }
    if (chosen.size() > most) {
        std::stable_partition(chosen.begin(), chosen.end(),
                              [&](std::size_t lane) { return isChanging(lanes[lane]); });
        chosen.resize(most);
        std::sort(chosen.begin(), chosen.end());
    }
    PictureLanes picture;
    picture.leftOut = drawable - chosen.size() + all.leftOut;
    for (std::size_t const number : chosen) {
        bool const hasQuality = number + 1 < lanes.size() &&
                                isNext(lanes[number].member, lanes[number + 1].member) &&
                                isQuality(lanes[number + 1]);
        picture.lanes.push_back(
            {.lane = &lanes[number], .quality = hasQuality ? &lanes[number + 1] : nullptr});
    }
    return picture;
}

bool isChanging(MemberLane const& lane) {
    auto const& intervals = lane.intervals;
    return std::any_of(intervals.begin(), intervals.end(), [&](LaneInterval const& each) {
        LaneInterval const& first = intervals.front();
        // Values of two messages are at other places of their frames: what they say counts.
        return each.state == LaneState::several || each.state != first.state ||
               each.value.has_value() != first.value.has_value() ||
               (each.value && laneText(*each.value) != laneText(*first.value));
    });
}

std::vector<LaneTime> badTimes(PictureLane const& lane) {
    std::vector<LaneTime> times;
    if (lane.quality != nullptr) {
        for (LaneInterval const& interval : lane.quality->intervals) {
            auto const known = interval.value ? qualityOf(*interval.value) : std::nullopt;
            if (known && toText(*known) != "good") {
                times.push_back({interval.from, interval.to});
            }
        }
    }
    return times;
}

std::optional<bool> bitOf(DataValue const& value) {
    if (auto const* const isTrue = std::get_if<bool>(&value.value)) {
        return *isTrue;
    }
    auto const* const bits = std::get_if<BitString>(&value.value);
    std::string_view const position = bits == nullptr ? std::string_view() : dbposReading(*bits);
    bool const isOn = position == "on";
    return isOn || position == "off" ? std::optional(isOn) : std::nullopt;
}

bool isBit(DataValue const& value) {
    auto const* const bits = std::get_if<BitString>(&value.value);
    return std::holds_alternative<bool>(value.value) ||
           (bits != nullptr && !dbposReading(*bits).empty());
}

std::string laneText(DataValue const& value) {
    auto const* const bits = std::get_if<BitString>(&value.value);
    if (value.kind == DataKind::bitString && bits != nullptr) {
        if (std::string_view const position = dbposReading(*bits); !position.empty()) {
            return std::string(position);
        }
    }
    constexpr std::size_t kMostColumns = 40;
    return shorten(toText(value), kMostColumns, Cut::end, "...");
}

}  // namespace TalIec61850Tools
