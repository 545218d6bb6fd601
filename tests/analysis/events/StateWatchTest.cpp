// Which messages of a stream begin a state, by counters and times alone.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <TalIec61850Analysis/events/StateWatch.hpp>

namespace TalTest::StateWatchTest {
namespace {

using namespace TalIec61850Analysis;
using namespace TalIec61850Analysis::detail;

constexpr std::int64_t kWatchMs = 1'000'000;
constexpr std::uint32_t kLargest = 0xFFFF'FFFF;

/// Feeds messages, each with a number of its own.
class WatchedStates {
public:
    explicit WatchedStates(std::optional<std::int64_t> life = 100) : life_(life) {}

    WatchedStates& add(std::int64_t arrival, MessageNumber number, std::uint16_t way = 0) {
        watch_.add({.arrival = arrival,
                    .packet = {.part = 0, .packet = next_++},
                    .number = number,
                    .way = way},
                   lifeOf(), sink());
        return *this;
    }

    WatchedStates& addUncounted() {
        watch_.add({.arrival = 0,
                    .packet = {.part = 0, .packet = next_++},
                    .number = {},
                    .isCounted = false},
                   lifeOf(), sink());
        return *this;
    }

    std::vector<StateChange> const& finish() {
        watch_.finish(sink());
        return changes_;
    }

    /// The changes, as `packet: stNum->stNum`.
    std::vector<std::string> lines() {
        std::vector<std::string> lines;
        for (StateChange const& change : finish()) {
            lines.push_back(
                std::to_string(change.packet.packet) + ": " + std::to_string(change.previousStNum) +
                "->" + std::to_string(change.number.stNum) + (change.isRestart ? " restart" : ""));
        }
        return lines;
    }

    [[nodiscard]] std::size_t reads() const { return reads_; }

private:
    LifeReader lifeOf() {
        return [this](PacketRef) {
            ++reads_;
            return life_;
        };
    }
    std::function<void(StateChange const&)> sink() {
        return [this](StateChange const& change) { changes_.push_back(change); };
    }

    std::optional<std::int64_t> life_;
    StateWatch watch_;
    std::vector<StateChange> changes_;
    std::uint32_t next_ = 0;
    std::size_t reads_ = 0;
};

using StateLines = std::vector<std::string>;

TEST(StateWatch, TakesNoFirstMessageForAnEvent) {
    EXPECT_EQ(WatchedStates().add(0, {5, 7}).add(kWatchMs, {5, 8}).lines(), StateLines());
}

TEST(StateWatch, TellsEachNewState) {
    WatchedStates watched;
    watched.add(0, {5, 7})
        .add(kWatchMs, {6, 0})
        .add(2 * kWatchMs, {6, 1})
        .add(3 * kWatchMs, {8, 2});
    EXPECT_EQ(watched.lines(), (StateLines{"1: 5->6", "3: 6->8"}));
    EXPECT_EQ(watched.reads(), 0U);
    EXPECT_EQ(watched.finish()[0].before.packet, 0U);
    EXPECT_EQ(watched.finish()[1].before.packet, 2U);
    EXPECT_EQ(watched.finish()[1].number.sqNum, 2U);
}

TEST(StateWatch, GoesOnAfterTheLargestCounters) {
    WatchedStates watched;
    watched.add(0, {kLargest, kLargest}).add(kWatchMs, {kLargest, 1}).add(2 * kWatchMs, {1, 1});
    watched.add(3 * kWatchMs, {1, 2}).add(4 * kWatchMs, {2, 0});
    EXPECT_EQ(watched.lines(), (StateLines{"2: 4294967295->1", "4: 1->2"}));
}

TEST(StateWatch, PassesOverLateAndRepeatedMessages) {
    WatchedStates watched;
    watched.add(0, {5, 7})
        .add(kWatchMs, {6, 0})
        .add(2 * kWatchMs, {5, 8})
        .add(3 * kWatchMs, {6, 0});
    watched.add(4 * kWatchMs, {6, 3}).add(5 * kWatchMs, {6, 2}).addUncounted();
    auto const& changes = watched.finish();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].retransmissionCount, 1U);
    EXPECT_EQ(changes[0].retransmissions, std::vector<std::int64_t>{3 * kWatchMs});
}

TEST(StateWatch, TakesAFallInTimeForALateMessage) {
    EXPECT_EQ(WatchedStates().add(0, {5, 7}).add(100 * kWatchMs, {4, 0}).lines(), StateLines());
    EXPECT_EQ(WatchedStates().add(0, {5, 7}).add(100 * kWatchMs + 1, {4, 0}).lines(),
              StateLines{"1: 5->4 restart"});
    EXPECT_EQ(WatchedStates(std::nullopt).add(0, {5, 7}).add(1000 * kWatchMs, {4, 0}).lines(),
              StateLines());
}

TEST(StateWatch, HearsAStateLiveThroughItsRepetitions) {
    WatchedStates watched;
    watched.add(0, {5, 7}).add(90 * kWatchMs, {5, 7}).add(150 * kWatchMs, {4, 0});
    EXPECT_EQ(watched.lines(), StateLines());
}

TEST(StateWatch, ReadsTheTimeAllowedToLiveOnceForAMessage) {
    WatchedStates watched;
    watched.add(0, {5, 7})
        .add(kWatchMs, {4, 0})
        .add(2 * kWatchMs, {4, 1})
        .add(3 * kWatchMs, {4, 2});
    watched.add(4 * kWatchMs, {5, 8}).add(5 * kWatchMs, {4, 3});
    EXPECT_EQ(watched.lines(), StateLines());
    EXPECT_EQ(watched.reads(), 2U);
}

TEST(StateWatch, TellsARestartByTheMessageAfterIt) {
    WatchedStates goesOn;
    goesOn.add(0, {5, 7}).add(kWatchMs, {1, 0}).add(2 * kWatchMs, {1, 1}).add(3 * kWatchMs, {2, 0});
    EXPECT_EQ(goesOn.lines(), (StateLines{"1: 5->1 restart", "3: 1->2"}));
    EXPECT_EQ(goesOn.finish()[0].retransmissionCount, 1U);
    WatchedStates goesBack;
    goesBack.add(0, {5, 7})
        .add(kWatchMs, {1, 0})
        .add(2 * kWatchMs, {5, 8})
        .add(3 * kWatchMs, {6, 0});
    EXPECT_EQ(goesBack.lines(), StateLines{"3: 5->6"});
    EXPECT_EQ(WatchedStates().add(0, {5, 7}).add(kWatchMs, {1, 0}).lines(), StateLines());
}

TEST(StateWatch, TakesStateOneAgainForARestart) {
    WatchedStates watched;
    watched.add(0, {1, 7}).add(kWatchMs, {1, 0}).add(2 * kWatchMs, {1, 1});
    EXPECT_EQ(watched.lines(), StateLines{"1: 1->1 restart"});
}

TEST(StateWatch, CountsEachMessageOnceOverSeveralWays) {
    WatchedStates watched;
    watched.add(0, {5, 0}, 0)
        .add(1, {5, 0}, 4)
        .add(kWatchMs, {6, 0}, 4)
        .add(kWatchMs + 1, {6, 0}, 0);
    watched.add(2 * kWatchMs, {6, 1}, 0)
        .add(2 * kWatchMs + 1, {6, 1}, 4)
        .add(3 * kWatchMs, {7, 0}, 0);
    // What the other way brings later is neither a restart nor an event.
    watched.add(1000 * kWatchMs, {6, 2}, 4);
    EXPECT_EQ(watched.lines(), (StateLines{"2: 5->6", "6: 6->7"}));
    EXPECT_EQ(watched.finish()[0].retransmissionCount, 1U);
}

TEST(StateWatch, TellsARestartThatComesOverAnotherWayAfterTheTimeAllowedToLive) {
    WatchedStates watched;
    watched.add(0, {9, 100}, 0);
    watched.add(400 * kWatchMs, {1, 0}, 4).add(401 * kWatchMs, {1, 1}, 4);
    watched.add(500 * kWatchMs, {2, 0}, 4);
    EXPECT_EQ(watched.lines(), (StateLines{"1: 9->1 restart", "3: 1->2"}));
}

TEST(StateWatch, TellsARestartInTheSameStateAfterTheTimeAllowedToLive) {
    WatchedStates watched;
    watched.add(0, {5, 1000}).add(400 * kWatchMs, {5, 0}).add(401 * kWatchMs, {5, 1});
    EXPECT_EQ(watched.lines(), StateLines{"1: 5->5 restart"});
}

TEST(StateWatch, KeepsTheFirstRetransmissionsAndCountsAll) {
    WatchedStates watched;
    watched.add(0, {5, 7}).add(0, {6, 0});
    for (std::uint32_t i = 1; i <= 1000; ++i) {
        watched.add(i * kWatchMs + (i == 500 ? 1 : 0), {6, i});
    }
    auto const& changes = watched.finish();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].retransmissions.size(), GooseEvent::kMostRetransmissions);
    EXPECT_EQ(changes[0].retransmissions.back(), 64 * kWatchMs);
    EXPECT_EQ(changes[0].retransmissionCount, 1000U);
    EXPECT_EQ(changes[0].longestInterval, kWatchMs + 1);
}

TEST(StateWatch, CountsIntervalsFromTheFirstMessageOn) {
    WatchedStates alone;
    alone.add(0, {5, 7}).add(kWatchMs, {6, 0}).add(9 * kWatchMs, {7, 0});
    EXPECT_EQ(alone.finish()[0].longestInterval, std::nullopt);
    WatchedStates two;
    two.add(0, {5, 7}).add(kWatchMs, {6, 0}).add(4 * kWatchMs, {6, 1}).add(5 * kWatchMs, {6, 2});
    EXPECT_EQ(two.finish()[0].longestInterval, 3 * kWatchMs);
}

TEST(StateWatch, TellsTimesThatRunBackwardsAsTheyAre) {
    WatchedStates watched;
    watched.add(9 * kWatchMs, {5, 7}).add(8 * kWatchMs, {6, 0}).add(6 * kWatchMs, {6, 1});
    auto const& changes = watched.finish();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].retransmissions, std::vector<std::int64_t>{-2 * kWatchMs});
    EXPECT_EQ(changes[0].longestInterval, -2 * kWatchMs);
}

TEST(StateWatch, CountsMessagesWithoutATime) {
    WatchedStates watched;
    watched.add(0, {5, 7}).add(kNoTime, {6, 0}).add(kWatchMs, {6, 1}).add(kNoTime, {6, 2});
    auto const& changes = watched.finish();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].arrival, kNoTime);
    EXPECT_EQ(changes[0].retransmissionCount, 2U);
    EXPECT_TRUE(changes[0].retransmissions.empty());
    EXPECT_EQ(changes[0].longestInterval, std::nullopt);
}

}  // namespace
}  // namespace TalTest::StateWatchTest
