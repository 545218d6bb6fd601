// Which message of a GOOSE stream is newer, by its counters.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/MessageOrder.hpp>

namespace TalTest::MessageOrderTest {
namespace {

using namespace TalIec61850Analysis;
using namespace TalIec61850Analysis::detail;

MessageTurn turnInTime(MessageNumber now, MessageNumber newest, bool isOtherWay = false) {
    return turnOf(now, newest, isOtherWay, [] { return false; });
}

MessageTurn turnAfterExpiry(MessageNumber now, MessageNumber newest, bool isOtherWay = false) {
    return turnOf(now, newest, isOtherWay, [] { return true; });
}

TEST(MessageOrder, CountsStepsPastTheLargestNumber) {
    EXPECT_EQ(stepsBetween(5, 6), 1U);
    EXPECT_EQ(stepsBetween(0xFFFF'FFFF, 1), 1U);
    EXPECT_EQ(stepsBetween(0xFFFF'FFFF, 0), 1U);
    EXPECT_EQ(stepsBetween(0xFFFF'FFFE, 1), 2U);
    EXPECT_EQ(stepsBetween(0xFFFF'FFFF, 3), 3U);
}

TEST(MessageOrder, KnowsWhatIsLater) {
    EXPECT_TRUE(isLater(6, 5));
    EXPECT_FALSE(isLater(5, 5));
    EXPECT_FALSE(isLater(5, 6));
    EXPECT_TRUE(isLater(1, 0xFFFF'FFFF));
    EXPECT_FALSE(isLater(0xFFFF'FFFF, 1));
    EXPECT_TRUE(isLater({3, 0}, {2, 9}));
    EXPECT_TRUE(isLater({2, 9}, {2, 8}));
}

TEST(MessageOrder, TakesLaterCountersForNewMessages) {
    EXPECT_EQ(turnInTime({5, 8}, {5, 7}), MessageTurn::later);
    EXPECT_EQ(turnInTime({6, 0}, {5, 7}), MessageTurn::later);
    EXPECT_EQ(turnInTime({5, 7}, {5, 7}), MessageTurn::same);
    EXPECT_EQ(turnInTime({5, 6}, {5, 7}), MessageTurn::older);
}

TEST(MessageOrder, TakesAFallingStateForARestartAfterExpiryAlone) {
    EXPECT_EQ(turnInTime({4, 0}, {5, 7}), MessageTurn::older);
    EXPECT_EQ(turnAfterExpiry({4, 0}, {5, 7}), MessageTurn::restart);
    EXPECT_EQ(turnAfterExpiry({5, 6}, {5, 7}), MessageTurn::older);
    EXPECT_EQ(turnInTime({4, 0}, {5, 7}, true), MessageTurn::older);
}

TEST(MessageOrder, LetsTheNextMessageTellWhetherAnotherWayBringsARestart) {
    EXPECT_EQ(turnAfterExpiry({4, 0}, {5, 7}, true), MessageTurn::mayBeRestart);
    EXPECT_EQ(turnAfterExpiry({1, 0}, {5, 7}, true), MessageTurn::mayBeRestart);
    EXPECT_EQ(turnInTime({1, 0}, {5, 7}, true), MessageTurn::older);
}

TEST(MessageOrder, LetsTheNextMessageTellWhetherAStateBeginsAnewAfterExpiry) {
    EXPECT_EQ(turnAfterExpiry({5, 0}, {5, 1000}), MessageTurn::mayBeRestart);
    EXPECT_EQ(turnAfterExpiry({5, 1}, {5, 1000}), MessageTurn::mayBeRestart);
    EXPECT_EQ(turnAfterExpiry({5, 2}, {5, 1000}), MessageTurn::older);
    EXPECT_EQ(turnInTime({5, 0}, {5, 1000}), MessageTurn::older);
}

TEST(MessageOrder, LetsTheNextMessageTellWhetherStateOneIsARestart) {
    EXPECT_EQ(turnInTime({1, 0}, {5, 7}), MessageTurn::mayBeRestart);
    EXPECT_EQ(turnInTime({1, 1}, {1, 7}), MessageTurn::mayBeRestart);
    EXPECT_EQ(turnInTime({1, 2}, {1, 7}), MessageTurn::older);
    EXPECT_TRUE(isRestart({1, 0}, {1, 1}, {5, 7}));
    EXPECT_TRUE(isRestart({1, 0}, {2, 0}, {5, 7}));
    EXPECT_FALSE(isRestart({1, 0}, {5, 8}, {5, 7}));
    EXPECT_FALSE(isRestart({1, 0}, {2, 0}, {1, 7}));
}

TEST(MessageOrder, TellsWhenAMessageExpires) {
    EXPECT_EQ(expiryOf(1'000, 2), 2'001'000);
    EXPECT_EQ(expiryOf(1'000, 0), kNoTime);
    EXPECT_EQ(expiryOf(1'000, -1), kNoTime);
    EXPECT_EQ(expiryOf(1'000, 1'000'000'001), kNoTime);
    EXPECT_EQ(expiryOf(1'000, std::nullopt), kNoTime);
    EXPECT_EQ(expiryOf(kNoTime, 2), kNoTime);
}

}  // namespace
}  // namespace TalTest::MessageOrderTest
