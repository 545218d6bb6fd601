// What pictures show: channels with their units, and the members that have a lane.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/render/PictureChannels.hpp"
#include "tools/render/PictureLanes.hpp"

namespace TalTest::PictureContentTest {
namespace {

using namespace TalIec61850Tools;
using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::DataValue;
using TalIec61850Analysis::LaneInterval;
using TalIec61850Analysis::LaneState;
using TalIec61850Analysis::MemberLane;
using TalIec61850Analysis::MemberLanes;
using TalIec61850Analysis::SampleLayout;
using TalIec61850Analysis::SampleType;

SampleLayout eightWithQuality() {
    std::vector<SampleType> members;
    for (int i = 0; i < 8; ++i) {
        members.push_back(SampleType::int32);
        members.push_back(SampleType::quality);
    }
    return SampleLayout(members);
}

TEST(PictureChannels, HaveTheUnitsOfTheirLayout) {
    auto const channels = pictureChannels({0, 7}, eightWithQuality(), nullptr, {});
    ASSERT_EQ(channels.size(), 2U);
    EXPECT_EQ(channels[0].unit, "A");
    EXPECT_EQ(channels[0].phase, "A");
    EXPECT_EQ(channels[0].scale(1500), 1.5);
    EXPECT_EQ(channels[1].unit, "V");
    EXPECT_EQ(channels[1].scale(1500), 15);
}

TEST(PictureChannels, TakeTheFactorsThatAreGiven) {
    auto const one = pictureChannels({0, 7}, eightWithQuality(), nullptr, {0.5});
    EXPECT_EQ(one[0].unit, "");
    EXPECT_EQ(one[0].scale(10), 5);
    EXPECT_EQ(one[1].scale(10), 5);
    auto const each = pictureChannels({0, 1, 2}, eightWithQuality(), nullptr, {2, 3});
    EXPECT_EQ(each[0].scale(10), 20);
    EXPECT_EQ(each[1].scale(10), 30);
    EXPECT_EQ(each[2].scale(10), 10);
}

TEST(PictureChannels, AreNumberedWhereNothingIsKnown) {
    auto const channels = pictureChannels({3}, std::nullopt, nullptr, {});
    EXPECT_EQ(channels[0].name, "channel 4");
    EXPECT_EQ(channels[0].unit, "");
    EXPECT_EQ(channels[0].scale(7), 7);
}

DataValue valueOf(DataKind kind, DataValue::Content content) {
    DataValue value;
    value.kind = kind;
    value.value = std::move(content);
    return value;
}

MemberLane laneOf(std::vector<std::uint32_t> member, std::vector<DataValue> const& values) {
    MemberLane lane{.member = std::move(member), .intervals = {}};
    for (DataValue const& value : values) {
        auto const from = static_cast<std::int64_t>(lane.intervals.size());
        lane.intervals.push_back({.from = from, .to = from + 1, .value = value});
    }
    return lane;
}

DataValue bit(bool is) { return valueOf(DataKind::boolean, is); }

DataValue number(std::int64_t is) { return valueOf(DataKind::integer, is); }

TEST(PictureLanes, LeaveOutTimeStampsAndShowThoseThatChangeFirst) {
    MemberLanes all;
    all.lanes.push_back(laneOf({0}, {bit(false)}));
    all.lanes.push_back(laneOf({1}, {valueOf(DataKind::utcTime, TalIec61850Analysis::UtcTime())}));
    all.lanes.push_back(laneOf({2}, {number(1), number(2)}));
    all.lanes.push_back(laneOf({3}, {bit(true)}));
    all.leftOut = 4;
    PictureLanes const roomy = pictureLanes(all, 10);
    ASSERT_EQ(roomy.lanes.size(), 3U);
    EXPECT_EQ(roomy.lanes[1].lane, &all.lanes[2]);
    EXPECT_EQ(roomy.leftOut, 4U);
    PictureLanes const two = pictureLanes(all, 2);
    ASSERT_EQ(two.lanes.size(), 2U);
    EXPECT_EQ(two.lanes[0].lane, &all.lanes[0]);
    EXPECT_EQ(two.lanes[1].lane, &all.lanes[2]);
    EXPECT_EQ(two.leftOut, 5U);
}

TEST(PictureLanes, ChangeWhereTheyShowMoreThanOneValue) {
    EXPECT_FALSE(isChanging(laneOf({0}, {})));
    EXPECT_FALSE(isChanging(laneOf({0}, {number(1)})));
    EXPECT_FALSE(isChanging(laneOf({0}, {number(1), number(1)})));
    EXPECT_TRUE(isChanging(laneOf({0}, {number(1), number(2)})));
    MemberLane lane = laneOf({0}, {number(1)});
    lane.intervals.push_back({.from = 1, .to = 2, .state = LaneState::expired, .value = {}});
    EXPECT_TRUE(isChanging(lane));
    lane.intervals = {{.from = 0, .to = 2, .state = LaneState::several, .value = {}}};
    EXPECT_TRUE(isChanging(lane));
}

TEST(PictureLanes, HaveShortTexts) {
    EXPECT_TRUE(isBit(bit(true)));
    EXPECT_FALSE(isBit(number(1)));
    EXPECT_EQ(laneText(number(-7)), "-7");
    std::string const text = laneText(valueOf(DataKind::visibleString, std::string(100, 'x')));
    EXPECT_LE(text.size(), 40U);
    EXPECT_TRUE(text.ends_with("...")) << text;
}

}  // namespace
}  // namespace TalTest::PictureContentTest
