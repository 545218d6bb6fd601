// Stations with known states, and the events that are found of them.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "analysis/events/EventsIn.hpp"
#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/TempFile.hpp"

namespace TalTest::FindEventsTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kMs = 1'000'000;
constexpr std::int64_t kEventSecond = 1'000'000'000;

/// Twenty messages that end a state, then two states of as many.
FaultyStation threeStates() {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1", .firstMessage = 100, .states = {20, 20, 20}});
    return station;
}

Lines const kTwoEvents = {"R1 #20 5->6 after #19: 0 true->false 2 t0->t1",
                          "R1 #40 6->7 after #39: 0 false->true 2 t1->t2"};

/// A second stream, its states between those of the first.
void addSecondStream(FaultyStation& station, std::int64_t start) {
    station.add(GoosePlan{.gocbRef = "R2",
                          .source = "02:00:00:00:00:12",
                          .firstMessage = 7,
                          .states = {3, 2, 30},
                          .start = start});
}

/// Messages of a plan, as more frames of a stream.
void addMore(FaultyStation& station, std::size_t stream, std::size_t firstNumber,
             GoosePlan const& plan) {
    FaultyStation other;
    other.add(plan);
    for (StationFrame frame : other.frames()) {
        frame.stream = stream;
        frame.number += firstNumber;
        station.frames().push_back(frame);
    }
}

TEST(FindEvents, TellsEachNewStateAndWhatChanged) {
    auto station = threeStates();
    EXPECT_EQ(eventLines(station), kTwoEvents);
}

TEST(FindEvents, TellsTimesAndCounters) {
    auto station = threeStates();
    station.goose(0, 20).t = utcTime(FaultyStation::kStart + 2, 0x800000, 0x6A);
    auto const captures = station.captures();
    auto const events = eventsIn(captures);
    ASSERT_EQ(events.size(), 2U);
    GooseEvent const& event = events[0];
    EXPECT_EQ(event.stream, 0U);
    EXPECT_EQ(event.arrival, FaultyStation::timeOf(station.frame(0, 20)));
    ASSERT_TRUE(event.t.has_value());
    EXPECT_EQ(event.t->seconds, FaultyStation::kStart + 2);
    EXPECT_EQ(event.t->quality, 0x6A);
    EXPECT_EQ(event.delay(), event.arrival - (FaultyStation::kStart * kEventSecond + 2500 * kMs));
    EXPECT_LT(event.delay(), 0);
    EXPECT_EQ(event.sqNum, 0U);
    EXPECT_EQ(event.timeAllowedtoLive, 250);
    // t counts in 60 ns.
    EXPECT_NEAR(static_cast<double>(*events[1].delay()), 0, 60);
}

TEST(FindEvents, TellsRetransmissionsAgainstTheTimeAllowedToLive) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1", .states = {1, 8}});
    auto const events = eventsIn(station.captures());
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].retransmissions,
              (std::vector<std::int64_t>{4 * kMs, 12 * kMs, 28 * kMs, 60 * kMs, 124 * kMs,
                                         224 * kMs, 324 * kMs}));
    EXPECT_EQ(events[0].retransmissionCount, 7U);
    EXPECT_EQ(events[0].longestInterval, 100 * kMs);
    EXPECT_DOUBLE_EQ(*events[0].longestPartOfLife(), 0.4);
}

TEST(FindEvents, HasNoPartOfATimeAllowedToLiveThatIsNone) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1", .states = {1, 3}, .timeAllowedtoLive = 0});
    auto events = eventsIn(station.captures());
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].timeAllowedtoLive, 0);
    EXPECT_EQ(events[0].longestPartOfLife(), std::nullopt);
    station.changeGooseFrom(0, 0, [](GooseMessage& each) { each.timeAllowedtoLive.reset(); });
    events = eventsIn(station.captures());
    EXPECT_EQ(events.at(0).timeAllowedtoLive, std::nullopt);
}

TEST(FindEvents, GivesStreamsInOneOrderOfTime) {
    auto station = threeStates();
    addSecondStream(station, station.frame(0, 20).time - 150 * kMs);
    auto const captures = station.captures();
    EXPECT_EQ(eventLines(captures, station),
              (Lines{kTwoEvents[0], "R2 #3 5->6 after #2: 0 true->false 2 t0->t1",
                     "R2 #5 6->7 after #4: 0 false->true 2 t1->t2", kTwoEvents[1]}));
}

TEST(FindEvents, TellsTheNextEventOfAnotherStream) {
    auto station = threeStates();
    addSecondStream(station, station.frame(0, 20).time - 150 * kMs);
    std::int64_t const first = station.frame(0, 20).time;
    auto const captures = station.captures();
    auto events = eventsIn(captures);
    ASSERT_EQ(events.size(), 4U);
    std::int64_t const second = station.frame(1, 3).time;
    ASSERT_TRUE(events[0].next.has_value());
    EXPECT_EQ(events[0].next->stream, 1U);
    EXPECT_EQ(events[0].next->after, second - first);
    // The one right after it is of the same stream, the one after that comes too late.
    EXPECT_EQ(events[1].next, std::nullopt);
    EXPECT_EQ(events[3].next, std::nullopt);
    events = eventsIn(captures, {.nextWithin = std::chrono::seconds(10)});
    ASSERT_TRUE(events[1].next.has_value());
    EXPECT_EQ(events[1].next->stream, 0U);
    EXPECT_EQ(events[1].next->after, station.frame(0, 40).time - second);
    events = eventsIn(captures, {.nextWithin = std::chrono::nanoseconds(second - first)});
    EXPECT_TRUE(events[0].next.has_value());
    events = eventsIn(captures, {.nextWithin = std::chrono::nanoseconds(second - first - 1)});
    EXPECT_FALSE(events[0].next.has_value());
}

TEST(FindEvents, LeavesStreamsOut) {
    auto station = threeStates();
    addSecondStream(station, station.frame(0, 20).time - 150 * kMs);
    auto const captures = station.captures();
    EventOptions const options{.takes = [](StreamKey const& key) { return key.name == "R1"; }};
    EXPECT_EQ(eventLines(captures, station, options), kTwoEvents);
    EXPECT_EQ(eventsIn(captures, options).at(0).next, std::nullopt);
}

TEST(FindEvents, KeepsToTheWindow) {
    auto station = threeStates();
    auto const captures = station.captures();
    auto const timeOf = [&](std::size_t number) {
        return CaptureTime(
            std::chrono::nanoseconds(FaultyStation::timeOf(station.frame(0, number))));
    };
    // Both ends are inside; what came before the window tells what has changed.
    EXPECT_EQ(eventLines(captures, station, {.window = {timeOf(20), timeOf(20)}}),
              Lines{kTwoEvents[0]});
    EXPECT_EQ(eventLines(captures, station, {.window = {timeOf(21), {}}}), Lines{kTwoEvents[1]});
    EXPECT_EQ(eventLines(captures, station, {.window = {{}, timeOf(19)}}), Lines());
    EXPECT_EQ(eventsIn(captures, {.window = {timeOf(20), timeOf(20)}}).at(0).retransmissionCount,
              19U);
}

TEST(FindEvents, EndsWhenItIsStopped) {
    auto station = threeStates();
    TempFile const file(station.captures().at(0));
    TrafficIndex const index = indexCapture(file.path());
    std::stop_source stop;
    std::size_t count = 0;
    findEvents(index, {.stop = stop.get_token()}, [&](GooseEvent const&) {
        ++count;
        stop.request_stop();
    });
    EXPECT_EQ(count, 1U);
    findEvents(index, {.stop = stop.get_token()}, [&](GooseEvent const&) { ++count; });
    EXPECT_EQ(count, 1U);
}

TEST(FindEvents, TakesLateAndReplayedMessagesForNone) {
    auto station = threeStates();
    station.delay(0, 20, 6 * kMs)
        .repeat(0, 25, 30 * kMs)
        .repeat(0, 30, station.frame(0, 45).time - station.frame(0, 30).time + kMs);
    EXPECT_EQ(eventLines(station),
              (Lines{"R1 #21 5->6 after #19: 0 true->false 2 t0->t1", kTwoEvents[1]}));
}

TEST(FindEvents, TakesARestartForAState) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1", .firstMessage = 100, .states = {20}});
    addMore(station, 0, 20,
            {.gocbRef = "R1", .firstState = 1, .states = {20}, .start = 1901 * kMs});
    // It goes on as a restart does, within the time allowed to live.
    EXPECT_EQ(eventLines(station), Lines{"R1 #20 5->1 restart after #19:"});
}

TEST(FindEvents, TakesAStateThatFallsAfterTheTimeAllowedToLiveForARestart) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1", .firstState = 9, .firstMessage = 100, .states = {20}});
    addMore(station, 0, 20,
            {.gocbRef = "R1", .firstState = 4, .states = {20}, .start = 2200 * kMs});
    EXPECT_EQ(eventLines(station), Lines{"R1 #20 9->4 restart after #19: 0 true->false"});
    // The same falls in time where messages are to live longer.
    station.changeGooseFrom(0, 0, [](GooseMessage& each) { each.timeAllowedtoLive = 10'000; });
    EXPECT_EQ(eventLines(station), Lines());
}

TEST(FindEvents, CountsWhatCameOverTwoLansOnce) {
    for (bool const isPrp : {false, true}) {
        auto station = threeStates();
        std::vector<StationFrame> copies;
        std::uint16_t sequence = 65530;
        for (StationFrame& frame : station.frames()) {
            ++sequence;
            StationFrame copy = frame;
            frame.ethernet = isPrp ? frame.ethernet.withPrp('A', sequence)
                                   : frame.ethernet.withHsr('A', sequence);
            copy.ethernet =
                isPrp ? copy.ethernet.withPrp('B', sequence) : copy.ethernet.withHsr('B', sequence);
            copy.time += 200'000;
            copies.push_back(copy);
        }
        station.frames().insert(station.frames().end(), copies.begin(), copies.end());
        EXPECT_EQ(eventLines(station), kTwoEvents);
        EXPECT_EQ(eventsIn(station.captures()).at(0).retransmissionCount, 19U);
    }
}

TEST(FindEvents, CountsOnceWhatTapsOfEachLanHaveByClocksOfTheirOwn) {
    for (std::int64_t const ahead :
         {std::int64_t{0}, 300 * kMs, 5 * kEventSecond, -3600 * kEventSecond}) {
        FaultyStation station;
        station.add(GoosePlan{
            .gocbRef = "R1", .firstMessage = 100, .states = {20, 20, 20}, .prpDelay = 200'000});
        EXPECT_EQ(eventLines(station.tapLans(ahead)), kTwoEvents) << ahead;
        auto const events = eventsIn(station.captures());
        EXPECT_EQ(events.at(0).retransmissionCount, 19U);
        // The first message of a state is on LAN B alone.
        std::erase_if(station.frames(), [](StationFrame const& frame) {
            return frame.number == 20 && frame.ethernet.prpLan == 'A';
        });
        auto const fewer = eventsIn(station.captures());
        ASSERT_EQ(fewer.size(), 2U) << ahead;
        EXPECT_EQ(fewer[0].arrival, events[0].arrival + (ahead == 0 ? 200'000 : 0));
        EXPECT_EQ(fewer[0].place.file, 1U);
        EXPECT_EQ(fewer[0].changes.size(), 2U);
        EXPECT_EQ(fewer[1].arrival, events[1].arrival);
    }
}

TEST(FindEvents, CountsWhatTwoFilesHaveOnce) {
    auto station = threeStates();
    std::int64_t const middle = station.frame(0, 20).time;
    station.splitAt(middle + 300 * kMs).overlap(middle - 200 * kMs, middle + 200 * kMs);
    EXPECT_EQ(eventLines(station), kTwoEvents);
    EXPECT_EQ(eventsIn(station.captures()).at(0).retransmissionCount, 19U);
}

TEST(FindEvents, CountsWhatTwoTapsHaveOnce) {
    auto station = threeStates();
    FaultyStation second = station;
    for (StationFrame& frame : second.frames()) {
        frame.clock += 50'000;
    }
    auto captures = station.captures();
    captures.push_back(second.captures().at(0));
    EXPECT_EQ(eventLines(captures, station), kTwoEvents);
    EXPECT_EQ(eventsIn(captures).at(0).retransmissionCount, 19U);
}

TEST(FindEvents, GoesOnOverFilesInAnyOrder) {
    auto station = threeStates();
    addSecondStream(station, station.frame(0, 20).time - 150 * kMs);
    auto const whole = eventLines(station);
    ASSERT_EQ(whole.size(), 4U);
    // Borders before and after the first message of a state.
    std::int64_t const state = station.frame(0, 20).time;
    station.splitAt(state).splitAt(state + 1).splitAt(station.frame(0, 39).time);
    auto captures = station.captures();
    ASSERT_EQ(captures.size(), 4U);
    EXPECT_EQ(eventLines(captures, station), whole);
    std::swap(captures[0], captures[3]);
    auto const events = eventsIn(captures);
    ASSERT_EQ(events.size(), 4U);
    EXPECT_EQ(events[0].place.file, 1U);
    EXPECT_EQ(events[0].before.file, 3U);
}

TEST(FindEvents, GoesOnAfterTheLargestCounters) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R1",
                          .firstState = 0xFFFF'FFFE,
                          .firstMessage = 0xFFFF'FFFD,
                          .states = {5, 3, 3, 3}});
    for (std::size_t number = 3; number < 5; ++number) {
        station.goose(0, number).sqNum = number - 2;
    }
    station.changeGooseFrom(0, 8, [](GooseMessage& each) { each.stNum = 1; });
    station.changeGooseFrom(0, 11, [](GooseMessage& each) { each.stNum = 2; });
    auto const lines = eventLines(station);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_TRUE(lines[0].starts_with("R1 #5 4294967294->4294967295 after #4:"));
    EXPECT_TRUE(lines[1].starts_with("R1 #8 4294967295->1 after #7:"));
    EXPECT_TRUE(lines[2].starts_with("R1 #11 1->2 after #10:"));
}

TEST(FindEvents, TellsNestedValuesAndQualities) {
    auto station = threeStates();
    auto const data = [](bool position, std::uint16_t quality) {
        return std::vector<Bytes>{
            dataInteger(5),
            dataStructure({dataBoolean(position), dataQuality(quality),
                           dataArray({dataFloat(1.5F), dataFloat(position ? 2.5F : 3.5F)})})};
    };
    station.changeGooseFrom(0, 0, [&](GooseMessage& each) { each.setData(data(false, 0)); })
        .changeGooseFrom(0, 20, [&](GooseMessage& each) { each.setData(data(true, 0x4000)); })
        .changeGooseFrom(0, 40, [&](GooseMessage& each) { each.setData(data(true, 0)); });
    EXPECT_EQ(eventLines(station), (Lines{"R1 #20 5->6 after #19: 1.0 false->true 1.1 x0000->x4000 "
                                          "1.2.1 3.500000->2.500000",
                                          "R1 #40 6->7 after #39: 1.1 x4000->x0000"}));
}

TEST(FindEvents, ComparesWithTheMessageBefore) {
    auto station = threeStates();
    station.changeGooseFrom(0, 0, [](GooseMessage& each) { each.setData({dataInteger(1)}); })
        .changeGooseFrom(0, 10, [](GooseMessage& each) { each.setData({dataInteger(2)}); })
        .changeGooseFrom(0, 20, [](GooseMessage& each) { each.setData({dataInteger(3)}); });
    EXPECT_EQ(eventLines(station),
              (Lines{"R1 #20 5->6 after #19: 0 2->3", "R1 #40 6->7 after #39:"}));
}

TEST(FindEvents, ListsAllValuesOfAnotherMake) {
    auto station = threeStates();
    station.changeGooseFrom(0, 20, [](GooseMessage& each) {
        each.setData({dataBoolean(true), dataInteger(7), dataInteger(8), dataInteger(9)});
    });
    EXPECT_EQ(eventLines(station),
              (Lines{"R1 #20 5->6 after #19: all 0 true->true 1 none->7 2 none->8 3 none->9",
                     "R1 #40 6->7 after #39:"}));
}

TEST(FindEvents, MarksMessagesWithoutData) {
    auto station = threeStates();
    station.goose(0, 20).allData.reset();
    EXPECT_EQ(eventLines(station), (Lines{"R1 #20 5->6 after #19: absent", kTwoEvents[1]}));
    auto before = threeStates();
    before.goose(0, 19).allData.reset();
    EXPECT_EQ(eventLines(before).at(0), "R1 #20 5->6 after #19: absent");
}

TEST(FindEvents, PassesOverMessagesWithoutTheirCounters) {
    auto station = threeStates();
    station.goose(0, 20).stNum.reset();
    station.goose(0, 40).sqNum.reset();
    station.goose(0, 41).stNum = 0x1'0000'0000;
    EXPECT_EQ(eventLines(station), (Lines{"R1 #21 5->6 after #19: 0 true->false 2 t0->t1",
                                          "R1 #42 6->7 after #39: 0 false->true 2 t1->t2"}));
}

/// Two messages of two states, of which the second is cut.
Bytes cutCapture(std::size_t octets, Bytes* whole = nullptr) {
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    GooseMessage message;
    message.t = utcTime(1'700'000'000);
    Bytes const first = gooseFrame(Ethernet(), message);
    message.stNum = 2;
    message.t = utcTime(1'700'000'001);
    message.timeAllowedtoLive = 3000;
    message.setData({dataBoolean(true)});
    Bytes const second = gooseFrame(Ethernet(), message);
    capture.add(1'700'000'000, 0, first);
    capture.addSnapped(1'700'000'001, 5, static_cast<std::uint32_t>(octets), second);
    message.stNum = 3;
    capture.add(1'700'000'002, 0, gooseFrame(Ethernet(), message));
    if (whole != nullptr) {
        *whole = second;
    }
    return capture.bytes();
}

TEST(FindEvents, TellsOfACutMessageWhatCameBeforeTheCut) {
    Bytes whole;
    static_cast<void>(cutCapture(100, &whole));
    // From the whole frame down to the first octet after stNum.
    std::size_t cut = 0;
    for (std::size_t octets = whole.size() - 1; octets > 60; --octets) {
        auto const events = eventsIn({cutCapture(octets)});
        if (events.size() < 2 || events[0].stNum != 2) {
            break;
        }
        ++cut;
        EXPECT_EQ(events[0].data, EventData::cut);
        EXPECT_TRUE(events[0].changes.empty());
        ASSERT_TRUE(events[0].t.has_value());
        EXPECT_EQ(events[0].t->seconds, 1'700'000'001U);
        EXPECT_EQ(events[0].timeAllowedtoLive, 3000);
        EXPECT_EQ(events[0].delay(), 5);
        // Nor is it known what changed after it.
        EXPECT_EQ(events[1].data, EventData::cut);
    }
    EXPECT_GT(cut, 10U);
}

TEST(FindEvents, OrdersTimesThatRunBackwards) {
    auto station = threeStates();
    station.stepClock(station.frame(0, 30).time, -5 * kEventSecond);
    auto const events = eventsIn(station.captures());
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].stNum, 7U);
    EXPECT_EQ(events[1].stNum, 6U);
    EXPECT_LT(events[1].retransmissions.back(), 0);
    EXPECT_EQ(events[1].retransmissionCount, 19U);
}

TEST(FindEvents, RefusesACaptureThatIsAnotherOneNow) {
    auto station = threeStates();
    TempFile const file(station.captures().at(0));
    TrafficIndex const index = indexCapture(file.path());
    std::filesystem::resize_file(file.path(), 100);
    EXPECT_THROW(findEvents(index, {}, [](GooseEvent const&) {}), std::system_error);
    std::filesystem::remove(file.path());
    EXPECT_THROW(findEvents(index, {}, [](GooseEvent const&) {}), std::system_error);
}

TEST(FindEvents, FindsNoneInWhatIsNoGoose) {
    FaultyStation station;
    station.add(SvPlan{.frames = 10});
    EXPECT_EQ(eventLines(station), Lines());
    EXPECT_TRUE(eventsIn({}).empty());
}

}  // namespace
}  // namespace TalTest::FindEventsTest
