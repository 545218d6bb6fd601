// `events --timeline`: lanes, their names, and where they change.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/FaultyStation.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::EventsTimelineTest {
namespace {

using TalIec61850Tools::countColumns;

constexpr std::int64_t kTimelineMs = 1'000'000;

std::vector<Bytes> timelineData(bool isOn, std::size_t members) {
    std::vector<Bytes> data = {
        dataBoolean(isOn), dataQuality(isOn ? 0x4000 : 0),
        dataStructure({dataInteger(isOn ? 7 : 3), dataUtcTime(1'700'000'000)})};
    while (data.size() < members) {
        data.push_back(dataBoolean(data.size() % 2 == 0));
    }
    return data;
}

/// A relay with two states of 20 messages each; the second begins as its message 20 comes.
FaultyStation timelineStation(std::size_t members = 3) {
    FaultyStation station;
    station.add(GoosePlan{.states = {20, 20}});
    station
        .changeGooseFrom(0, 0,
                         [=](GooseMessage& each) { each.setData(timelineData(false, members)); })
        .changeGooseFrom(0, 20,
                         [=](GooseMessage& each) { each.setData(timelineData(true, members)); });
    return station;
}

Surroundings plainSurroundings(std::string const& columns = "") {
    return {.environment = {{"LC_ALL", "C"}, {"COLUMNS", columns}, {"NO_COLOR", ""}}};
}

/// What is drawn, line by line; a head of two lines is one.
std::vector<std::string> timelineOf(Arguments const& arguments,
                                    Surroundings const& surroundings = plainSurroundings()) {
    auto const result = runCompanion(joined({"events", "--timeline"}, arguments), surroundings);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    auto lines = linesOf(result.out);
    if (lines.size() > 1 && lines[1].starts_with("  ")) {
        lines[0] += lines[1];
        lines.erase(lines.begin() + 1);
    }
    return lines;
}

TEST(EventsTimeline, HasAHeadALaneForEachMemberAndAnAxis) {
    TempFile const file(timelineStation().captures().at(0));
    auto const lines = timelineOf({file.path()});
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_EQ(lines[0].find("RELAY1LD0/LLN0$GO$gcb1  02:00:00:00:00:11  "), 0U);
    EXPECT_NE(lines[0].find(" s from 2023-11-14T22:13:20.000000000Z"), std::string::npos);
    EXPECT_EQ(lines[1].substr(0, 6), "1    _");
    EXPECT_EQ(lines[1].back(), '#');
    EXPECT_EQ(lines[2].substr(0, 5), "bad  ");
    EXPECT_EQ(lines[3].substr(0, 8), "3.1  |3 ");
    EXPECT_NE(lines[3].find("|7 -"), std::string::npos);
    EXPECT_EQ(lines[4].substr(0, 5), "     ");
    EXPECT_EQ(lines[5], "");
    EXPECT_EQ(lines[6], "2 members of 1 stream in 1 file");
}

TEST(EventsTimeline, ChangesInTheColumnOfTheMessage) {
    FaultyStation station = timelineStation();
    std::int64_t last = 0;
    for (StationFrame const& frame : station.inTimeOrder()) {
        last = std::max(last, FaultyStation::timeOf(frame));
    }
    std::int64_t const first = FaultyStation::timeOf(station.frame(0, 0));
    std::int64_t const change = FaultyStation::timeOf(station.frame(0, 20));
    TempFile const file(station.captures().at(0));
    for (std::size_t const columns : {80U, 120U}) {
        auto const lines = timelineOf({file.path()}, plainSurroundings(std::to_string(columns)));
        constexpr std::size_t kLabels = 5;
        auto const expected =
            kLabels + static_cast<std::size_t>((change - first) *
                                               static_cast<std::int64_t>(columns - kLabels) /
                                               (last - first + 1));
        EXPECT_EQ(lines.at(1).size(), columns);
        EXPECT_EQ(lines.at(1).find('#'), expected);
        EXPECT_EQ(lines.at(2).find('!'), expected);
        EXPECT_EQ(lines.at(3).find("|7"), expected);
    }
}

TEST(EventsTimeline, DrawsTheMembersThatAreAskedFor) {
    TempFile const file(timelineStation().captures().at(0));
    auto const quality = timelineOf({"--member", "2", file.path()});
    EXPECT_EQ(quality.at(1).substr(0, 6), "2    |");
    EXPECT_EQ(quality.back(), "1 member of 1 stream in 1 file");
    auto const inside = timelineOf({"--member", "3.*", file.path()});
    EXPECT_EQ(inside.at(1).substr(0, 4), "3.1 ");
    EXPECT_EQ(inside.at(2).substr(0, 4), "3.2 ");
    auto const none = runCompanion({"events", "--timeline", "--member", "77", file.path()});
    EXPECT_EQ(none.status, 0);
    EXPECT_NE(none.err.find("no such member; these streams have packets from"), std::string::npos);
}

TEST(EventsTimeline, SaysHowManyMembersAreLeftOut) {
    TempFile const file(timelineStation(40).captures().at(0));
    auto const lines = timelineOf({file.path()});
    EXPECT_NE(std::find(lines.begin(), lines.end(), "23 more members left out: see --member"),
              lines.end());
    EXPECT_EQ(lines.at(1).substr(0, 4), "1   ");
    EXPECT_EQ(lines.back(), "16 members of 1 stream in 1 file");
}

TEST(EventsTimeline, IsOfTheWindow) {
    TempFile const file(timelineStation().captures().at(0));
    auto const lines = timelineOf({"--from", "+100ms", "--to", "+200ms", file.path()});
    EXPECT_EQ(lines.at(1), "1    " + std::string(75, '_'));
    EXPECT_NE(lines.at(3).find("|22:13:20.1"), std::string::npos);
    auto const none = runCompanion({"events", "--timeline", "--from", "2030-01-01", file.path()});
    EXPECT_EQ(none.status, 0);
    EXPECT_NE(none.err.find("in the window; these streams have packets from"), std::string::npos);
    EXPECT_EQ(none.out, "\n0 members of 0 streams in 1 file\n");
}

TEST(EventsTimeline, DotsWhatIsNotKnownAfterTheTimeAllowedToLive) {
    FaultyStation station = timelineStation();
    station.dropBetween(300 * kTimelineMs, 900 * kTimelineMs);
    TempFile const file(station.captures().at(0));
    auto const lines = timelineOf({file.path()});
    EXPECT_NE(lines.at(1).find("___....."), std::string::npos);
}

TEST(EventsTimeline, CannotBeCombinedWithOptionsOfRows) {
    TempFile const file(timelineStation().captures().at(0));
    for (Arguments const& option : std::vector<Arguments>{{"--format", "csv"},
                                                          {"--columns", "time"},
                                                          {"--wide"},
                                                          {"--next-within", "1s"},
                                                          {"--limit", "3"}}) {
        expectUsageError(joined({"events", "--timeline", file.path()}, option));
    }
    expectUsageError({"events", "--timeline", "--protocol", "sv", file.path()});
}

TEST(EventsTimeline, KeepsItsAlignmentWhateverNamesAndValuesThereAre) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "\x1b[2J\u202e\u4e2d\xff", .states = {5, 5}});
    station.changeGooseFrom(0, 0, [](GooseMessage& each) {
        each.setData({dataVisibleString("\x1b[31m\r\n\u202e\u4e2d\u6587\xff"),
                      dataVisibleString(std::string(300, 'x'))});
    });
    TempFile const file(station.captures().at(0));
    for (std::string const columns : {"20", "33", "80"}) {
        Surroundings surroundings = plainSurroundings(columns);
        surroundings.environment[0].second = "C.UTF-8";
        auto const result = runCompanion({"events", "--timeline", file.path()}, surroundings);
        EXPECT_EQ(result.status, 0);
        for (auto const& line : linesOf(result.out)) {
            EXPECT_LE(countColumns(line), std::stoul(columns));
            EXPECT_EQ(line.find_first_of("\x1b\r"), std::string::npos);
            EXPECT_EQ(line.find("\u202e"), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace TalTest::EventsTimelineTest
