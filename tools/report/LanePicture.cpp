#include "tools/report/LanePicture.hpp"

#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tools/render/PictureLanes.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::LaneInterval;
using TalIec61850Analysis::LaneOptions;
using TalIec61850Analysis::LaneState;
using TalIec61850Analysis::MemberLane;
using TalIec61850Analysis::MemberLanes;
using TalIec61850Analysis::TrafficIndex;

namespace {

using Json = nlohmann::ordered_json;

/// One lane for the page.
class LaneJson {
public:
    LaneJson(LanePictureWish const& wish, PictureLane const& chosen)
        : wish_(wish), chosen_(chosen), lane_(*chosen.lane) {}

    [[nodiscard]] Json tell(std::string name) {
        Json spans = Json::array();
        bool areBits = true;
        for (LaneInterval const& interval : lane_.intervals) {
            Json value = valueOf(interval);
            areBits = areBits && (!interval.value || isBit(*interval.value));
            spans.push_back(
                {interval.from - wish_.from, interval.to - wish_.from, std::move(value)});
        }
        Json json;
        json["name"] = std::move(name);
        json["isBits"] = areBits;
        json["isChanging"] = isChanging(lane_);
        json["on"] = numberOf({"true", "on"});
        json["off"] = numberOf({"false", "off"});
        json["values"] = values_;
        json["spans"] = std::move(spans);
        json["bad"] = badSpans();
        return json;
    }

private:
    Json valueOf(LaneInterval const& interval) {
        if (interval.state == LaneState::several) {
            return place("changes often");
        }
        return interval.value ? Json(place(laneText(*interval.value))) : Json();
    }

    std::size_t place(std::string const& text) {
        auto const [known, isNew] = places_.try_emplace(text, values_.size());
        if (isNew) {
            values_.push_back(text);
        }
        return known->second;
    }

    [[nodiscard]] Json numberOf(std::vector<std::string> const& texts) const {
        for (std::string const& text : texts) {
            if (auto const known = places_.find(text); known != places_.end()) {
                return known->second;
            }
        }
        return -1;
    }

    [[nodiscard]] Json badSpans() const {
        Json spans = Json::array();
        for (LaneTime const& time : badTimes(chosen_)) {
            spans.push_back({time.from - wish_.from, time.to - wish_.from});
        }
        return spans;
    }

    LanePictureWish const& wish_;
    PictureLane const& chosen_;
    MemberLane const& lane_;
    std::vector<std::string> values_;
    std::map<std::string, std::size_t> places_;
};

}  // namespace

LanePicture drawLanes(TrafficIndex const& index, std::size_t stream, LanePictureWish const& wish,
                      PictureNames const& names) {
    LaneOptions options;
    options.window = wish.window;
    options.mostIntervals = wish.mostIntervals;
    MemberLanes const all = readMemberLanes(index, stream, options);
    PictureLanes const chosen = pictureLanes(all, wish.mostLanes);
    LanePicture picture;
    picture.leftOut = chosen.leftOut;
    Json lanes = Json::array();
    auto const& known = index.streams()[stream];
    for (PictureLane const& each : chosen.lanes) {
        MemberLane const& lane = *each.lane;
        lanes.push_back(LaneJson(wish, each).tell(names.of(known, lane.member)));
        picture.areJoined = picture.areJoined ||
                            std::any_of(lane.intervals.begin(), lane.intervals.end(),
                                        [](auto const& interval) { return interval.joined > 1; });
    }
    if (!lanes.empty()) {
        picture.json["name"] = names.of(known);
        picture.json["lanes"] = std::move(lanes);
    }
    return picture;
}

}  // namespace TalIec61850Tools
