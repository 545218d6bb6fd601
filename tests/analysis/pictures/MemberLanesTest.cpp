// GOOSE members over time, of stations whose states are known.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <algorithm>
#include <filesystem>
#include <system_error>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/FaultyStation.hpp"
#include "support/TempFile.hpp"

namespace TalTest::MemberLanesTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kLaneMs = 1'000'000;
constexpr std::int64_t kStationStart = FaultyStation::kStart * 1'000'000'000;

/// A file of a station, and its index.
class IndexedStation {
public:
    explicit IndexedStation(FaultyStation& station) {
        for (Bytes const& capture : station.captures()) {
            paths_.push_back(folder_.write(std::to_string(paths_.size()) + ".pcap", capture));
        }
        index_ = indexCaptures(paths_);
    }

    [[nodiscard]] MemberLanes lanes(LaneOptions const& options = {}, std::size_t stream = 0) const {
        return readMemberLanes(index_, stream, options);
    }
    [[nodiscard]] std::vector<std::string> const& paths() const { return paths_; }

private:
    TempDir folder_;
    std::vector<std::string> paths_;
    TrafficIndex index_;
};

std::string laneValue(LaneInterval const& interval) {
    switch (interval.state) {
        case LaneState::several:
            return "several" + std::to_string(interval.joined);
        case LaneState::lost:
            return "lost";
        case LaneState::expired:
            return "expired";
        case LaneState::unread:
            return "unread";
        case LaneState::known:
            break;
    }
    if (auto const* const flag = std::get_if<bool>(&interval.value.value().value)) {
        return *flag ? "true" : "false";
    }
    if (auto const* const number = std::get_if<std::int64_t>(&interval.value->value)) {
        return std::to_string(*number);
    }
    return "?";
}

/// `0-100 true; 100-150 lost`, in milliseconds after the start of the station.
std::string laneLine(MemberLane const& lane) {
    std::string line;
    for (LaneInterval const& each : lane.intervals) {
        line += line.empty() ? "" : "; ";
        line += std::to_string((each.from - kStationStart) / kLaneMs) + "-" +
                std::to_string((each.to - kStationStart) / kLaneMs) + " " + laneValue(each);
    }
    return line;
}

/// States 5, 6 and 7 at 0, 1584 and 3168 ms; messages at 0, 4, 12, 28, 60, 124 and each 100 ms.
FaultyStation stationOfThree() {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1", .states = {20, 20, 20}, .timeAllowedtoLive = 250});
    return station;
}

std::int64_t msOf(FaultyStation& station, std::size_t number) {
    return station.frame(0, number).time / kLaneMs;
}

std::string lineOf(std::int64_t from, std::int64_t to, std::string const& value) {
    return std::to_string(from) + "-" + std::to_string(to) + " " + value;
}

CaptureTime stationTime(std::int64_t ms) { return captureTimeOf(kStationStart + ms * kLaneMs); }

TEST(MemberLanes, TellValuesFromTheFirstMessageOn) {
    auto station = stationOfThree();
    auto const lanes = IndexedStation(station).lanes();
    ASSERT_EQ(lanes.lanes.size(), 3U);
    EXPECT_EQ(lanes.lanes[0].member, (std::vector<std::uint32_t>{0}));
    EXPECT_EQ(laneLine(lanes.lanes[0]), lineOf(0, msOf(station, 20), "true") + "; " +
                                            lineOf(msOf(station, 20), msOf(station, 40), "false") +
                                            "; " +
                                            lineOf(msOf(station, 40), msOf(station, 59), "true"));
    // The quality never changes; the time stamp does with each state.
    EXPECT_EQ(laneLine(lanes.lanes[1]), lineOf(0, msOf(station, 59), "?"));
    EXPECT_EQ(lanes.lanes[2].intervals.size(), 3U);
    EXPECT_EQ(lanes.leftOut, 0U);
}

TEST(MemberLanes, AreCutToAWindow) {
    auto station = stationOfThree();
    IndexedStation const indexed(station);
    std::int64_t const change = msOf(station, 20);
    auto const line = [&](std::optional<CaptureTime> from, std::optional<CaptureTime> to) {
        auto const lanes = indexed.lanes({.window = {.from = from, .to = to}});
        return lanes.lanes.empty() ? std::string() : laneLine(lanes.lanes[0]);
    };
    EXPECT_EQ(line(stationTime(change - 30), stationTime(change + 40)),
              lineOf(change - 30, change, "true") + "; " + lineOf(change, change + 40, "false"));
    EXPECT_EQ(line(stationTime(change + 1), stationTime(change + 2)),
              lineOf(change + 1, change + 2, "false"));
    EXPECT_EQ(line(stationTime(change), stationTime(change)), lineOf(change, change, "false"));
    EXPECT_EQ(line({}, stationTime(10)), lineOf(0, 10, "true"));
    EXPECT_EQ(line(stationTime(-20), stationTime(-10)), "");
    EXPECT_EQ(line(stationTime(9'000'000), {}), "");
    EXPECT_EQ(line(stationTime(20), stationTime(10)), "");
}

TEST(MemberLanes, AreLostFromTheLastMessageBeforeAMissingOne) {
    auto station = stationOfThree();
    // The first two messages of a state.
    station.drop(0, 20, 2);
    auto const lanes = IndexedStation(station).lanes();
    EXPECT_EQ(laneLine(lanes.lanes.at(0)),
              lineOf(0, msOf(station, 19), "true") + "; " +
                  lineOf(msOf(station, 19), msOf(station, 22), "lost") + "; " +
                  lineOf(msOf(station, 22), msOf(station, 40), "false") + "; " +
                  lineOf(msOf(station, 40), msOf(station, 59), "true"));
}

TEST(MemberLanes, AreLostAndExpiredWhereAWholeStateIsMissing) {
    auto station = stationOfThree();
    station.drop(0, 20, 20);
    auto const lanes = IndexedStation(station).lanes();
    std::int64_t const heard = msOf(station, 19);
    std::int64_t const next = msOf(station, 40);
    EXPECT_EQ(laneLine(lanes.lanes.at(0)), lineOf(0, heard, "true") + "; " +
                                               lineOf(heard, heard + 250, "lost") + "; " +
                                               lineOf(heard + 250, next, "expired") + "; " +
                                               lineOf(next, msOf(station, 59), "true"));
}

TEST(MemberLanes, ExpireInTheMiddleOfAState) {
    auto station = stationOfThree();
    station.drop(0, 10, 5);
    auto const lanes = IndexedStation(station).lanes();
    std::int64_t const heard = msOf(station, 9);
    EXPECT_EQ(laneLine(lanes.lanes.at(0)).substr(0, laneLine(lanes.lanes[0]).rfind("; ")),
              lineOf(0, heard + 250, "true") + "; " +
                  lineOf(heard + 250, msOf(station, 15), "expired") + "; " +
                  lineOf(msOf(station, 15), msOf(station, 20), "true") + "; " +
                  lineOf(msOf(station, 20), msOf(station, 40), "false"));
}

TEST(MemberLanes, ExpireThoughLateAndReplayedMessagesCome) {
    auto station = stationOfThree();
    station.drop(0, 10, 5);
    std::int64_t const heard = msOf(station, 9);
    std::int64_t const next = msOf(station, 15);
    // One of the first messages again, and one that was seen just before.
    station.repeat(0, 2, (heard + 200 - msOf(station, 2)) * kLaneMs);
    station.repeat(0, 8, (heard + 201 - msOf(station, 8)) * kLaneMs);
    auto const line = laneLine(IndexedStation(station).lanes().lanes.at(0));
    EXPECT_EQ(line.substr(0, line.find("; ", line.find("expired"))),
              lineOf(0, heard + 250, "true") + "; " + lineOf(heard + 250, next, "expired"));
}

TEST(MemberLanes, ExpireThoughMessagesComeWhoseCountersWereCutOff) {
    auto station = stationOfThree();
    station.drop(0, 11, 4);
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (StationFrame const& each : station.inTimeOrder()) {
        Bytes const octets = FaultyStation::octetsOf(each);
        auto const time = static_cast<std::uint32_t>(each.time);
        auto const size = static_cast<std::uint32_t>(octets.size());
        ASSERT_LT(each.time, 2'000'000'000);
        // The identity is there, what comes after it is not.
        capture.addSnapped(FaultyStation::kStart + time / 1'000'000'000, time % 1'000'000'000,
                           each.number == 10 ? 50 : size, octets);
        if (each.number == 16) break;
    }
    TempDir const folder;
    auto const index = indexCapture(folder.write("cut.pcap", capture.bytes()));
    ASSERT_EQ(index.streams().size(), 1U);
    auto const lanes = readMemberLanes(index, 0);
    std::int64_t const heard = msOf(station, 9);
    std::int64_t const next = msOf(station, 15);
    ASSERT_FALSE(lanes.lanes.empty());
    EXPECT_EQ(laneLine(lanes.lanes[0]), lineOf(0, heard + 250, "true") + "; " +
                                            lineOf(heard + 250, next, "expired") + "; " +
                                            lineOf(next, msOf(station, 16), "true"));
}

TEST(MemberLanes, GoByALongerLifeOfLaterMessages) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1", .states = {20}, .timeAllowedtoLive = 10});
    for (std::size_t i = 4; i < 20; ++i) station.goose(0, i).timeAllowedtoLive = 1000;
    station.drop(0, 10, 5);
    auto const lanes = IndexedStation(station).lanes();
    // 4 ms, 8 ms, then 16 ms of which 10 are allowed, 32 ms likewise.
    EXPECT_EQ(laneLine(lanes.lanes.at(0)), lineOf(0, 22, "true") +
                                               "; 22-28 expired; 28-38 true; 38-60 expired; " +
                                               lineOf(60, msOf(station, 19), "true"));
}

TEST(MemberLanes, DoNotExpireWithoutATimeAllowedToLive) {
    auto station = stationOfThree();
    station.changeGooseFrom(0, 0, [](GooseMessage& each) { each.timeAllowedtoLive.reset(); });
    station.drop(0, 10, 5);
    auto const lanes = IndexedStation(station).lanes();
    EXPECT_EQ(lanes.lanes.at(1).intervals.size(), 1U);
}

TEST(MemberLanes, EndWithTheLifeOfTheLastMessage) {
    auto station = stationOfThree();
    station.add(SvPlan{.frames = 4000 * 6});
    auto const lanes = IndexedStation(station).lanes();
    std::int64_t const last = msOf(station, 59);
    EXPECT_EQ(laneLine(lanes.lanes.at(1)),
              lineOf(0, last + 250, "?") + "; " + lineOf(last + 250, 5999, "expired"));
}

TEST(MemberLanes, GoIntoStructures) {
    auto station = stationOfThree();
    for (std::size_t i = 0; i < 60; ++i) {
        station.goose(0, i).setData(
            {dataStructure({dataInteger(i < 20 ? 1 : 2), dataArray({dataBoolean(i < 40)})}),
             dataInteger(7)});
    }
    auto const lanes = IndexedStation(station).lanes();
    ASSERT_EQ(lanes.lanes.size(), 3U);
    EXPECT_EQ(lanes.lanes[0].member, (std::vector<std::uint32_t>{0, 0}));
    EXPECT_EQ(lanes.lanes[1].member, (std::vector<std::uint32_t>{0, 1, 0}));
    EXPECT_EQ(lanes.lanes[2].member, (std::vector<std::uint32_t>{1}));
    EXPECT_EQ(lanes.lanes[0].intervals.size(), 2U);
    EXPECT_EQ(laneLine(lanes.lanes[1]), lineOf(0, msOf(station, 40), "true") + "; " +
                                            lineOf(msOf(station, 40), msOf(station, 59), "false"));
    EXPECT_EQ(laneLine(lanes.lanes[2]), lineOf(0, msOf(station, 59), "7"));
}

TEST(MemberLanes, HaveNoIntervalWhereThereIsNoSuchMember) {
    auto station = stationOfThree();
    for (std::size_t i = 0; i < 60; ++i) {
        std::vector<Bytes> data = {dataInteger(1)};
        if (i >= 20 && i < 40) data.push_back(dataInteger(2));
        station.goose(0, i).setData(data);
    }
    auto const lanes = IndexedStation(station).lanes();
    ASSERT_EQ(lanes.lanes.size(), 2U);
    EXPECT_EQ(laneLine(lanes.lanes[0]), lineOf(0, msOf(station, 59), "1"));
    EXPECT_EQ(laneLine(lanes.lanes[1]), lineOf(msOf(station, 20), msOf(station, 40), "2"));
}

TEST(MemberLanes, TellTypesApart) {
    auto station = stationOfThree();
    for (std::size_t i = 0; i < 60; ++i) {
        station.goose(0, i).setData({i < 20 ? dataInteger(1) : dataUnsigned(1)});
    }
    auto const lanes = IndexedStation(station).lanes();
    ASSERT_EQ(lanes.lanes.size(), 1U);
    ASSERT_EQ(lanes.lanes[0].intervals.size(), 2U);
    EXPECT_EQ(lanes.lanes[0].intervals[0].value->kind, DataKind::integer);
    EXPECT_EQ(lanes.lanes[0].intervals[1].value->kind, DataKind::unsignedNumber);
}

TEST(MemberLanes, AreUnreadWhereThereAreNoValues) {
    auto station = stationOfThree();
    for (std::size_t i = 20; i < 40; ++i) station.goose(0, i).allData.reset();
    auto const lanes = IndexedStation(station).lanes();
    EXPECT_EQ(laneLine(lanes.lanes.at(0)),
              lineOf(0, msOf(station, 20), "true") + "; " +
                  lineOf(msOf(station, 20), msOf(station, 40), "unread") + "; " +
                  lineOf(msOf(station, 40), msOf(station, 59), "true"));
}

TEST(MemberLanes, AreBounded) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1", .states = std::vector<std::size_t>(100, 2)});
    IndexedStation const indexed(station);
    auto const all = indexed.lanes();
    ASSERT_EQ(all.lanes.size(), 3U);
    EXPECT_EQ(all.lanes[0].intervals.size(), 100U);
    auto const some = indexed.lanes({.mostLanes = 2, .mostIntervals = 16});
    ASSERT_EQ(some.lanes.size(), 2U);
    EXPECT_EQ(some.leftOut, 1U);
    EXPECT_LE(some.lanes[0].intervals.size(), 16U);
    EXPECT_EQ(some.lanes[1].intervals.size(), 1U);
    std::uint64_t joined = 0;
    std::int64_t last = some.lanes[0].intervals.front().from;
    for (LaneInterval const& each : some.lanes[0].intervals) {
        EXPECT_EQ(each.from, last);
        EXPECT_EQ(each.joined > 1, each.state == LaneState::several);
        EXPECT_EQ(each.value.has_value(), each.state == LaneState::known);
        last = each.to;
        joined += each.joined;
    }
    EXPECT_EQ(joined, 100U);
    EXPECT_EQ(last, all.lanes[0].intervals.back().to);
}

TEST(MemberLanes, AreOfTheStreamThatWasAskedFor) {
    auto station = stationOfThree();
    station.add(GoosePlan{.gocbRef = "R2", .source = "02:00:00:00:00:12", .states = {5}});
    station.add(SvPlan{.frames = 10});
    IndexedStation const indexed(station);
    EXPECT_EQ(indexed.lanes({}, 1).lanes.at(0).intervals.size(), 2U);  // true, then expired
    EXPECT_TRUE(indexed.lanes({}, 2).lanes.empty());
}

TEST(MemberLanes, AreNoneOfANumberThatTheIndexDoesNotHave) {
    auto station = stationOfThree();
    IndexedStation const indexed(station);
    EXPECT_TRUE(indexed.lanes({}, 1).lanes.empty());
    EXPECT_TRUE(readMemberLanes(TrafficIndex(), 0).lanes.empty());
}

TEST(MemberLanes, LastANanosecondWhereTheOnlyMessageIsTheLastOfTheCapture) {
    FaultyStation station;
    station.add(GoosePlan{.states = {1}});
    auto const lanes = IndexedStation(station).lanes().lanes;
    ASSERT_FALSE(lanes.empty());
    ASSERT_EQ(lanes[0].intervals.size(), 1U);
    LaneInterval const& only = lanes[0].intervals[0];
    EXPECT_EQ(only.to, only.from + 1);
    EXPECT_EQ(only.state, LaneState::known);
    EXPECT_TRUE(only.value.has_value());
}

TEST(MemberLanes, StopWhenTheyAreToldTo) {
    auto station = stationOfThree();
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(IndexedStation(station).lanes({.stop = stop.get_token()}).lanes.empty());
}

TEST(MemberLanes, ThrowWhereTheCaptureIsGone) {
    auto station = stationOfThree();
    IndexedStation const indexed(station);
    std::filesystem::remove(indexed.paths().at(0));
    EXPECT_THROW(static_cast<void>(indexed.lanes()), std::system_error);
}

TEST(MemberLanes, AreTheSameHoweverTheyAreCutIntoFiles) {
    auto station = stationOfThree();
    auto const one = IndexedStation(station).lanes();
    station.splitAt(1'000 * kLaneMs).splitAt(2'000 * kLaneMs);
    auto const many = IndexedStation(station).lanes();
    ASSERT_EQ(one.lanes.size(), many.lanes.size());
    for (std::size_t i = 0; i < one.lanes.size(); ++i) EXPECT_EQ(one.lanes[i], many.lanes[i]);
}

TEST(MemberLanes, WaitWhereTheClockIsSetBack) {
    auto station = stationOfThree();
    station.stepClock(station.frame(0, 30).time, -60'000 * kLaneMs);
    auto const lanes = IndexedStation(station).lanes();
    std::int64_t last = 0;
    for (LaneInterval const& each : lanes.lanes.at(0).intervals) {
        EXPECT_GE(each.from, last);
        EXPECT_GT(each.to, each.from);
        last = each.to;
    }
}

RC_GTEST_PROP(MemberLanesProperty, AnyCountersAndTimesGiveOrderedLanes, ()) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R0", .states = {20, 10, 30}});
    for (StationFrame& frame : station.frames()) {
        auto& goose = std::get<GooseMessage>(frame.message);
        if (*rc::gen::inRange(0, 6) == 0) {
            frame.clock = *rc::gen::inRange<std::int64_t>(-2'000'000'000, 2'000'000'000);
        }
        if (*rc::gen::inRange(0, 4) == 0) {
            goose.stNum = *rc::gen::inRange<std::uint64_t>(0, 4);
            goose.sqNum = *rc::gen::arbitrary<std::uint32_t>();
            goose.timeAllowedtoLive = *rc::gen::inRange<std::uint64_t>(0, 100);
        }
    }
    auto const lanes = IndexedStation(station).lanes({.mostIntervals = 16});
    for (MemberLane const& lane : lanes.lanes) {
        RC_ASSERT(lane.intervals.size() <= 16U);
        std::int64_t last = 0;
        for (LaneInterval const& each : lane.intervals) {
            RC_ASSERT(each.from >= last);
            RC_ASSERT(each.to > each.from);
            RC_ASSERT(each.value.has_value() == (each.state == LaneState::known));
            last = each.to;
        }
    }
}

}  // namespace
}  // namespace TalTest::MemberLanesTest
