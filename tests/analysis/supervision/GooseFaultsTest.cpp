// One GOOSE stream with a known fault, and all that is found of it.

#include <gtest/gtest.h>

#include "analysis/supervision/FoundIn.hpp"
#include "support/Data.hpp"

namespace TalTest::GooseFaultsTest {
namespace {

constexpr std::int64_t kMillisecond = 1'000'000;
std::string const kName = "RELAY1LD0/LLN0$GO$gcb1";

/// Twenty messages that end a state, then two states of as many.
FaultyStation gooseStation() {
    FaultyStation station;
    station.add(GoosePlan{.firstMessage = 100, .states = {20, 20, 20}});
    return station;
}

Lines named(Lines lines) {
    for (std::string& line : lines) {
        line.insert(line.find(' ') + 1, kName + " ");
    }
    return lines;
}

std::vector<Bytes> values(bool value, std::uint16_t quality = 0, std::uint32_t time = 1) {
    return {dataBoolean(value), dataQuality(quality), dataUtcTime(time)};
}

TEST(GooseFaults, FindsNothingInACleanStream) {
    auto station = gooseStation();
    station.add(GoosePlan{.gocbRef = "R2", .source = "02:00:00:00:00:12", .states = {1, 1, 54, 3}});
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(GooseFaults, TellsDataThatDifferInAMessageThatCameAgain) {
    auto station = gooseStation();
    station.repeat(0, 25, kMillisecond);
    auto& again = std::get<GooseMessage>(station.frames().back().message);
    again.allData = station.goose(0, 45).allData;
    EXPECT_EQ(foundIn(station),
              named({"repeated #25 after #25", "changedWithoutState #25 after #25"}));
}

TEST(GooseFaults, TellsEntriesOfWhichThereIsNone) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 0, [](GooseMessage& message) { message.allData.reset(); });
    auto const lines = foundIn(station);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), named({"entriesDiffer #0"}).front());
}

TEST(GooseFaults, CountsMissingMessages) {
    auto station = gooseStation();
    station.drop(0, 5).drop(0, 30, 2);
    EXPECT_EQ(foundIn(station), named({"sqNumGap #6 after #4 lost 1",
                                       "sqNumGap #32 after #29 lost 2", "expired #32 after #29"}));
}

TEST(GooseFaults, CountsMissingStates) {
    auto station = gooseStation();
    station.drop(0, 20, 20);
    auto const lines = foundIn(station);
    EXPECT_EQ(lines, named({"stateGap #40 after #19 lost 1", "expired #40 after #19"}));
}

TEST(GooseFaults, CountsMissingStartsOfStates) {
    auto station = gooseStation();
    station.drop(0, 20, 3);
    EXPECT_EQ(foundIn(station), named({"stateStartMissing #23 after #19 lost 3"}));
}

TEST(GooseFaults, TellsALateMessageAlone) {
    auto station = gooseStation();
    station.delay(0, 5, 150 * kMillisecond);
    EXPECT_EQ(foundIn(station), named({"late #5 after #6"}));
}

TEST(GooseFaults, TellsALateFirstMessageOfAStateAlone) {
    auto station = gooseStation();
    station.delay(0, 20, 6 * kMillisecond);
    EXPECT_EQ(foundIn(station), named({"late #20 after #21"}));
}

TEST(GooseFaults, TellsRepeatedAndReplayedMessages) {
    auto station = gooseStation();
    station.repeat(0, 5, kMillisecond)
        .repeat(0, 3, 250 * kMillisecond)
        .repeat(0, 7, 10'000'000'000);
    auto const lines = foundIn(station);
    EXPECT_EQ(lines[0], "repeated " + kName + " #5 after #5");
    EXPECT_EQ(lines[1], "replay " + kName + " #3 after #5");
}

TEST(GooseFaults, TellsARestartAtStateOne) {
    for (unsigned const first : {0U, 1U}) {
        FaultyStation station;
        station.add(GoosePlan{.firstMessage = 100, .states = {20}});
        FaultyStation after;
        after.add(GoosePlan{
            .firstState = 1, .firstMessage = 0, .states = {20}, .start = 2000 * kMillisecond});
        for (StationFrame frame : after.frames()) {
            auto& message = std::get<GooseMessage>(frame.message);
            message.sqNum = frame.number + first;
            message.setData(values(false, 0, 9));
            frame.number += 20;
            station.frames().push_back(frame);
        }
        EXPECT_EQ(foundIn(station), named({"counterRestart #20"}));
    }
}

TEST(GooseFaults, TellsARestartAfterTheTimeAllowedToLive) {
    FaultyStation station;
    station.add(GoosePlan{.firstState = 9, .firstMessage = 100, .states = {20}});
    FaultyStation after;
    after.add(GoosePlan{.firstState = 4, .states = {20}, .start = 4000 * kMillisecond});
    for (StationFrame frame : after.frames()) {
        frame.number += 20;
        station.frames().push_back(frame);
    }
    EXPECT_EQ(foundIn(station), named({"counterRestart #20", "expired #20"}));
}

TEST(GooseFaults, TakesAStateThatFallsInTimeForAReplay) {
    auto station = gooseStation();
    StationFrame old = station.frame(0, 21);
    old.time = station.frame(0, 45).time + kMillisecond;
    station.frames().push_back(old);
    EXPECT_EQ(foundIn(station), named({"replay #21 after #45"}));
}

TEST(GooseFaults, TellsDataThatChangeWithoutAState) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 5, [](GooseMessage& message) {
        if (message.stNum->value == 5) {
            message.setData(values(false));
        }
    });
    station.goose(0, 30).setData(values(true, 0x4000));
    auto const lines = foundIn(station);
    EXPECT_EQ(lines, named({"changedWithoutState #5", "stateWithoutChange #20",
                            "changedWithoutState #30 count 2", "qualityChanged #30",
                            "qualityChanged #31"}));
}

TEST(GooseFaults, TellsStatesWithoutChange) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 20,
                            [](GooseMessage& message) { message.setData(values(true, 0, 77)); });
    EXPECT_EQ(foundIn(station), named({"stateWithoutChange #20", "stateWithoutChange #40"}));
}

TEST(GooseFaults, TellsTimesThatDoNotGoWithStates) {
    auto station = gooseStation();
    Bytes const t = *station.goose(0, 20).t;
    station.changeGooseFrom(0, 40, [&](GooseMessage& message) { message.t = t; });
    station.changeGooseFrom(0, 50,
                            [&](GooseMessage& message) { message.t = utcTime(1'700'000'000); });
    EXPECT_EQ(foundIn(station), named({"timeUnchanged #40", "timeWithoutState #50"}));
}

TEST(GooseFaults, TellsExpiryToTheNanosecond) {
    auto station = gooseStation();
    for (std::size_t number = 10; number < 20; ++number) {
        station.goose(0, number).timeAllowedtoLive = 100;
    }
    auto const lines = foundIn(station);
    // A heartbeat that comes exactly after the time is in time.
    EXPECT_EQ(lines, named({"timeAllowedtoLiveChanged #10", "timeAllowedtoLiveChanged #20"}));
    station.delay(0, 15, 1);
    EXPECT_EQ(foundIn(station), named({"timeAllowedtoLiveChanged #10", "expired #15",
                                       "timeAllowedtoLiveChanged #20"}));
}

TEST(GooseFaults, TellsExpiryAtTheEnd) {
    auto station = gooseStation();
    station.add(SvPlan{.rate = 20, .frames = 200});
    auto const lines = foundIn(station);
    EXPECT_EQ(lines, named({"expired end after #59"}));
}

TEST(GooseFaults, TellsExpiryAtTheEndToTheNanosecond) {
    // The last frame of all comes when the time allowed to live ends, or directly after it.
    constexpr std::int64_t kLife = 250'000'000;
    constexpr std::int64_t kInterval = 250'000;
    for (std::int64_t const late : {-1, 0, 1}) {
        auto station = gooseStation();
        std::int64_t const end = station.frame(0, 59).time + kLife + late;
        station.add(SvPlan{.frames = 100, .start = end - 99 * kInterval});
        EXPECT_EQ(foundIn(station), late > 0 ? named({"expired end after #59"}) : Lines()) << late;
    }
}

TEST(GooseFaults, TellsTimesAllowedToLive) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 5, [](GooseMessage& message) { message.timeAllowedtoLive = 0; });
    station.changeGooseFrom(0, 10, [](GooseMessage& message) { message.timeAllowedtoLive = 250; });
    EXPECT_EQ(foundIn(station), named({"timeAllowedtoLiveZero #5", "timeAllowedtoLiveChanged #5",
                                       "timeAllowedtoLiveChanged #10"}));
}

TEST(GooseFaults, TakesTimesThatGrowWithTheIntervalsAsTheyAre) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 0, [](GooseMessage& message) {
        std::uint64_t const sqNum = message.sqNum->value;
        message.timeAllowedtoLive = sqNum >= 5 ? 250 : std::uint64_t{10} << sqNum;
    });
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(GooseFaults, TellsWhatAStreamSaysOfItself) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 2, [](GooseMessage& message) { message.confRev = 2; });
    station.changeGooseFrom(0, 4, [](GooseMessage& message) { message.datSet = "other"; });
    station.changeGooseFrom(0, 6, [](GooseMessage& message) { message.ndsCom = true; });
    station.changeGooseFrom(0, 8, [](GooseMessage& message) { message.numDatSetEntries = 7; });
    station.changeGooseFrom(0, 10, [](GooseMessage& message) { message.simulation = true; });
    station.changeGooseFrom(0, 12, [](GooseMessage& message) { message.reserved1 = 0x8000; });
    station.changeGooseFrom(0, 14, [](GooseMessage& message) {
        message.simulation = false;
        message.reserved1 = 0;
    });
    EXPECT_EQ(foundIn(station),
              named({"confRevChanged #2", "dataSetChanged #4", "needsCommissioning #6",
                     "entriesDiffer #8", "simulationBegan #10", "simulationContradicts #10",
                     "simulationEnded #14"}));
}

TEST(GooseFaults, TakesSimulationThatIsLeftOutForFalse) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 0, [](GooseMessage& message) { message.simulation.reset(); });
    EXPECT_EQ(foundIn(station), Lines());
    station.changeGooseFrom(0, 10, [](GooseMessage& message) { message.reserved1 = 0x8000; });
    EXPECT_EQ(foundIn(station), named({"simulationBegan #10", "simulationContradicts #10"}));
}

TEST(GooseFaults, SaysNothingOfSimulationWhereAMessageEndsBeforeIt) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 0, [](GooseMessage& message) {
        message.simulation.reset();
        message.reserved1 = 0x8000;
        message.confRev.reset();
        message.ndsCom.reset();
        message.numDatSetEntries.reset();
        message.allData.reset();
    });
    EXPECT_EQ(foundIn(station), named({"simulationBegan #0"}));
}

TEST(GooseFaults, TellsAnotherMakeOfTheData) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 40, [](GooseMessage& message) {
        message.setData({dataBoolean(true), dataInteger(3), dataUtcTime(3)});
    });
    EXPECT_EQ(foundIn(station), named({"dataSetChanged #40"}));
}

TEST(GooseFaults, TellsClocksThatAreNotRight) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 20, [](GooseMessage& message) { message.t->back() = 0x2A; });
    station.changeGooseFrom(0, 40, [](GooseMessage& message) { message.t->back() = 0x6A; });
    EXPECT_EQ(foundIn(station), named({"clockNotSynchronized #20", "clockFailure #40"}));
}

TEST(GooseFaults, TellsTimesAheadOfArrival) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 20, [](GooseMessage& message) {
        if (message.stNum->value == 6) {
            message.t = utcTime(1'700'000'060);
        }
    });
    EXPECT_EQ(foundIn(station), named({"timeAhead #20"}));
}

TEST(GooseFaults, TellsTwoPublishersOfOneName) {
    auto station = gooseStation();
    FaultyStation other;
    other.add(GoosePlan{.firstState = 2, .firstMessage = 50, .states = {40}, .start = 30'000'000});
    for (StationFrame frame : other.frames()) {
        frame.number += 1000;
        station.frames().push_back(frame);
    }
    EXPECT_EQ(foundIn(station), named({"twoPublishers #1000 after #0 count 40"}));
}

TEST(GooseFaults, FindsTheFirstAndTheLastMessage) {
    auto station = gooseStation();
    station.repeat(0, 0, kMillisecond).drop(0, 1).drop(0, 58).repeat(0, 59, kMillisecond);
    EXPECT_EQ(foundIn(station), named({"repeated #0 after #0", "sqNumGap #2 after #0 lost 1",
                                       "sqNumGap #59 after #57 lost 1", "repeated #59 after #59"}));
}

TEST(GooseFaults, FindsThemAtTheBordersOfFiles) {
    auto station = gooseStation();
    station.drop(0, 5).drop(0, 20).repeat(0, 45, kMillisecond);
    Lines const lines = foundIn(station);
    EXPECT_EQ(lines, named({"sqNumGap #6 after #4 lost 1", "stateStartMissing #21 after #19 lost 1",
                            "repeated #45 after #45"}));
    for (std::size_t const number : {4U, 6U, 21U, 45U, 46U}) {
        auto split = station;
        split.splitAt(split.frame(0, number).time);
        EXPECT_EQ(foundIn(split), lines) << number;
    }
}

TEST(GooseFaults, CountsOnAfterTheLargestNumbers) {
    FaultyStation station;
    station.add(GoosePlan{.firstState = 0xFFFF'FFFF, .firstMessage = 0xFFFF'FFFA, .states = {10}});
    for (std::size_t number = 6; number < 10; ++number) {
        station.goose(0, number).sqNum = number - 6 + 1;
    }
    FaultyStation after;
    after.add(GoosePlan{.firstState = 1, .states = {10}, .start = 1000 * kMillisecond});
    for (StationFrame frame : after.frames()) {
        auto& message = std::get<GooseMessage>(frame.message);
        message.sqNum = frame.number + 1;
        message.setData(values(false, 0, 9));
        frame.number += 10;
        station.frames().push_back(frame);
    }
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(GooseFaults, AreOneWhereEachMessageComesTooLate) {
    // A heartbeat each 100 ms, and 60 ms to live.
    auto station = gooseStation();
    station.changeGooseFrom(0, 0, [](GooseMessage& message) { message.timeAllowedtoLive = 60; });
    Lines const expected =
        named({"expired #1 count 20", "expired #25 count 16", "expired #45 count 15"});
    EXPECT_EQ(foundIn(station), expected);
    // The one after the last is not due yet, and then it is overdue.
    for (std::int64_t const after : {90, 110}) {
        auto goesOn = station;
        std::int64_t const end = station.frame(0, 59).time + after * kMillisecond;
        goesOn.add(SvPlan{.frames = 100, .start = end - 99 * 250'000});
        Lines lines = expected;
        if (after > 100) lines.push_back("expired " + kName + " end after #59");
        EXPECT_EQ(foundIn(goesOn), lines) << after;
    }
}

TEST(GooseFaults, AreOneWhereEachMessageComesTwice) {
    auto station = gooseStation();
    for (std::size_t number = 3; number < 15; ++number) {
        station.repeat(0, number, kMillisecond);
    }
    station.repeat(0, 17, kMillisecond);
    EXPECT_EQ(foundIn(station), named({"repeated #3 after #3 count 12", "repeated #17 after #17"}));
}

TEST(GooseFaults, AreOneWhereEachMessageIsReplayed) {
    auto station = gooseStation();
    for (std::size_t number = 3; number < 15; ++number) {
        station.repeat(0, number, 150 * kMillisecond);
    }
    EXPECT_EQ(foundIn(station), named({"replay #3 after #4 count 12"}));
}

TEST(GooseFaults, AreOneWhereSqNumCountsByTwo) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 0, [](GooseMessage& message) {
        if (message.stNum->value == 5) message.sqNum = 2 * message.sqNum->value;
    });
    EXPECT_EQ(foundIn(station), named({"sqNumGap #1 lost 19 count 19"}));
    // With good messages between them they are not.
    auto apart = gooseStation();
    apart.drop(0, 3).drop(0, 5).drop(0, 8);
    EXPECT_EQ(foundIn(apart), named({"sqNumGap #4 after #2 lost 1", "sqNumGap #6 after #4 lost 1",
                                     "sqNumGap #9 after #7 lost 1"}));
}

TEST(GooseFaults, AreOneWhereTheTimeAllowedToLiveGoesBackAndForth) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 6, [](GooseMessage& message) {
        bool const isShort = message.stNum->value == 5 && message.sqNum->value % 2 == 0;
        message.timeAllowedtoLive = isShort ? 200 : 250;
    });
    EXPECT_EQ(foundIn(station), named({"timeAllowedtoLiveChanged #6 count 14"}));
}

TEST(GooseFaults, TellsATimeAllowedToLiveThatIsShorterFromANewStateOn) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 20, [](GooseMessage& message) { message.timeAllowedtoLive = 150; });
    EXPECT_EQ(foundIn(station), named({"timeAllowedtoLiveChanged #20"}));
    station.changeGooseFrom(0, 40, [](GooseMessage& message) { message.timeAllowedtoLive = 250; });
    EXPECT_EQ(foundIn(station),
              named({"timeAllowedtoLiveChanged #20", "timeAllowedtoLiveChanged #40"}));
}

TEST(GooseFaults, TakesATimeThatIsShortForAWhileInEachStateAsItIs) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 20, [](GooseMessage& message) {
        message.timeAllowedtoLive = message.sqNum->value < 7 ? 120 : 250;
    });
    EXPECT_EQ(foundIn(station), Lines());
}

TEST(GooseFaults, TellsASqNumThatIsNotResetWithoutLoss) {
    auto station = gooseStation();
    station.changeGooseFrom(0, 20, [](GooseMessage& message) {
        if (message.stNum->value == 6) message.sqNum = 120 + message.sqNum->value;
    });
    EXPECT_EQ(foundIn(station), named({"stateStartMissing #20"}));
}

/// Messages of state 9, then those of another publisher's life.
FaultyStation restartedStation(std::uint32_t state, std::int64_t pause) {
    FaultyStation station;
    station.add(GoosePlan{.firstState = 9, .firstMessage = 100, .states = {20}});
    FaultyStation after;
    std::int64_t const start = station.frame(0, 19).time + pause;
    after.add(GoosePlan{.firstState = state, .states = {20}, .start = start});
    for (StationFrame frame : after.frames()) {
        frame.number += 20;
        station.frames().push_back(frame);
    }
    return station;
}

TEST(GooseFaults, TellsARestartInTheSameStateAfterTheTimeAllowedToLive) {
    auto station = restartedStation(9, 30'000 * kMillisecond);
    EXPECT_EQ(foundIn(station), named({"counterRestart #20", "expired #20"}));
}

TEST(GooseFaults, TellsARestartThatComesOverTheOtherLan) {
    auto station = restartedStation(1, 40'000 * kMillisecond);
    std::uint16_t sequence = 100;
    for (StationFrame& frame : station.frames()) {
        frame.ethernet.prpLan = frame.number < 20 ? 'A' : 'B';
        frame.ethernet.prpSequence = sequence++;
    }
    EXPECT_EQ(foundIn(station), named({"counterRestart #20", "expired #20"}));
}

TEST(GooseFaults, SaysNothingOfALastMessageThatMayBeARestart) {
    auto station = restartedStation(1, 100 * kMillisecond);
    station.drop(0, 21, 19);
    EXPECT_EQ(foundIn(station), Lines());
}

}  // namespace
}  // namespace TalTest::GooseFaultsTest
