#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/terminal/PlainPictures.hpp"
#include "tools/terminal/TimeScale.hpp"
#include "tools/terminal/TimelineRows.hpp"

namespace TalTest::TimelineRowsTest {
namespace {

using namespace TalIec61850Tools;
using TalIec61850Analysis::LaneState;
using TalIec61850Analysis::MemberLane;

constexpr unsigned kIntermediate = 0;
constexpr unsigned kOff = 1;
constexpr unsigned kOn = 2;
constexpr unsigned kBad = 3;

/// A lane of 60 columns after "aaaa ", 10 ms each.
std::vector<std::string> linesOfLane(MemberLane const& lane, bool isUtf8 = false,
                                     MemberLane const* quality = nullptr) {
    TimelinePicture picture;
    picture.lanes.push_back({.name = "aaaa", .lane = {.lane = &lane, .quality = quality}});
    picture.from = kPictureStart;
    picture.end = kPictureStart + 600 * kPictureMs;
    return linesOf(timelineRows(picture, {.columns = 65, .isUtf8 = isUtf8}));
}

std::string lineOfLane(std::vector<PlainInterval> const& intervals, bool isUtf8 = false) {
    return linesOfLane(plainLane(intervals), isUtf8).at(0);
}

std::string times(std::size_t count, std::string const& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

TEST(TimelineRows, FillWhatIsTrueFromTheColumnInWhichItBegins) {
    std::vector<PlainInterval> const pulse = {
        {0, 205, boolValue(false)}, {205, 310, boolValue(true)}, {310, 600, boolValue(false)}};
    EXPECT_EQ(lineOfLane(pulse), "aaaa " + times(20, "_") + times(11, "#") + times(29, "_"));
    EXPECT_EQ(lineOfLane(pulse, true),
              "aaaa " + times(20, "\u2581") + times(11, "\u2586") + times(29, "\u2581"));
}

TEST(TimelineRows, DrawDoublePointsAsBitsAndWriteWhatIsBetween) {
    EXPECT_EQ(
        lineOfLane({{0, 100, positionValue(kOff)},
                    {100, 300, positionValue(kIntermediate)},
                    {300, 420, positionValue(kOn)},
                    {420, 600, positionValue(kBad)}}),
        "aaaa " + times(10, "_") + "|intermediate-state " + times(12, "#") + "|bad-state -------");
}

TEST(TimelineRows, WriteOtherValuesWhereTheyHold) {
    EXPECT_EQ(lineOfLane({{0, 100, numberValue(7)},
                          {100, 130, numberValue(-12)},
                          {130, 150, numberValue(12345)},
                          {150, 160, numberValue(9)},
                          {160, 600, textValue("a text")}}),
              "aaaa |7 -------|-1|1||a text " + times(36, "-"));
    EXPECT_EQ(lineOfLane({{-50, 300, numberValue(7)}, {300, 600, numberValue(8)}}, true),
              "aaaa 7 " + times(28, "\u2500") + "\u25028 " + times(27, "\u2500"));
}

TEST(TimelineRows, CutValuesThatDoNotFit) {
    EXPECT_EQ(lineOfLane({{0, 100, textValue("abcdefghijkl")}}), "aaaa |abcdef...");
    EXPECT_EQ(lineOfLane({{0, 100, textValue("abcdefghijkl")}}, true), "aaaa \u2502abcdefgh\u2026");
}

TEST(TimelineRows, DotWhatIsNotKnownAndLeaveOutWhatIsNotThere) {
    EXPECT_EQ(lineOfLane({{100, 200, boolValue(true)},
                          {200, 300, {}, LaneState::lost},
                          {300, 400, {}, LaneState::expired},
                          {400, 450, {}, LaneState::unread}}),
              "aaaa " + times(10, " ") + times(10, "#") + times(25, "."));
}

TEST(TimelineRows, ShadeColumnsWithMoreThanOneChange) {
    EXPECT_EQ(lineOfLane({{0, 203, boolValue(false)},
                          {203, 207, boolValue(true)},
                          {207, 400, boolValue(false)},
                          {400, 500, {}, LaneState::several},
                          {500, 600, boolValue(true)}}),
              "aaaa " + times(20, "_") + "*" + times(19, "_") + times(10, "*") + times(10, "#"));
    EXPECT_NE(lineOfLane({{0, 10, {}, LaneState::several}}, true).find("\u2592"),
              std::string::npos);
}

TEST(TimelineRows, MarkBadQualityBelowALane) {
    auto const lane = plainLane({{0, 600, boolValue(true)}});
    TalIec61850Analysis::DataValue quality{
        .kind = TalIec61850Analysis::DataKind::bitString,
        .fault = {},
        .value = TalIec61850Analysis::BitString{.octets = {0x00, 0x00}, .unusedBits = 3}};
    auto bad = quality;
    std::get<TalIec61850Analysis::BitString>(bad.value).octets[0] = 0x40;
    auto const qualities = plainLane({{0, 300, quality}, {300, 350, bad}, {350, 600, quality}});
    auto const lines = linesOfLane(lane, false, &qualities);
    EXPECT_EQ(lines.at(1), "bad  " + times(30, " ") + "!!!!!");
    auto const good = plainLane({{0, 600, quality}});
    EXPECT_EQ(linesOfLane(lane, false, &good).at(1).find('!'), std::string::npos);
}

TEST(TimelineRows, HaveTheAxisBelow) {
    auto const lane = plainLane({{0, 600, boolValue(true)}});
    EXPECT_EQ(linesOfLane(lane).at(1), "     |10:00:00.0         |10:00:00.2         |10:00:00.4");
}

TEST(TimelineRows, HaveColours) {
    auto const lane = plainLane({{0, 300, boolValue(true)}, {300, 600, {}, LaneState::lost}});
    TimelinePicture picture;
    picture.lanes.push_back({.name = "aaaa", .lane = {.lane = &lane, .quality = nullptr}});
    picture.from = kPictureStart;
    picture.end = kPictureStart + 600 * kPictureMs;
    auto const lines = linesOf(timelineRows(picture, {.columns = 65, .inColour = true}));
    EXPECT_EQ(lines.at(0), "aaaa " + times(30, "#") + "\x1b[2m" + times(30, ".") + "\x1b[0m");
}

RC_GTEST_PROP(TimelineRows, NeverTakeMoreThanTheirColumns, ()) {
    auto const columns = *rc::gen::inRange<std::size_t>(20, 200);
    auto const names = *rc::gen::container<std::vector<std::string>>(
        3, rc::gen::element<std::string>("", "a", "\u4e2d\u6587\u4e2d\u6587\u4e2d\u6587",
                                         "LD0/PTRC1.Tr.general.of.a.very.long.name.indeed",
                                         "\\u202e\\xff", "e\u0301"));
    auto const changes = *rc::gen::container<std::vector<int>>(20, rc::gen::inRange(0, 60));
    std::vector<PlainInterval> intervals;
    std::int64_t at = -20;
    for (int const length : changes) {
        auto const value = *rc::gen::element(
            boolValue(true), numberValue(at), positionValue(kIntermediate),
            textValue("\u4e2d\u6587 \u202e\x1b[31m and more of it, more than 40 columns"));
        intervals.push_back({at, at + length + 1, value});
        at += length + 1;
    }
    auto const lane = plainLane(intervals);
    TimelinePicture picture;
    for (auto const& name : names) {
        picture.lanes.push_back({.name = name, .lane = {.lane = &lane, .quality = nullptr}});
    }
    picture.from = kPictureStart;
    picture.end = kPictureStart + 600 * kPictureMs;
    for (bool const isUtf8 : {true, false}) {
        for (auto const& line :
             linesOf(timelineRows(picture, {.columns = columns, .isUtf8 = isUtf8}))) {
            RC_ASSERT(countColumns(line) <= columns);
        }
    }
}

TEST(TimeScale, IsANanosecondLongAtTheLastTimeThereIs) {
    constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
    TimeScale const scale(kLast, kLast, 10);
    EXPECT_EQ(scale.from(), kLast - 1);
    EXPECT_EQ(scale.end(), kLast);
    EXPECT_EQ(scale.columnOf(kLast - 1), 0U);
    EXPECT_EQ(scale.columnOf(kLast), 9U);
}

}  // namespace
}  // namespace TalTest::TimelineRowsTest
