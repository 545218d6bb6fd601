// The order in which patterns take turns.

#include <gtest/gtest.h>

#include <TalIec61850Parser/wire/pattern/TurnPredictor.hpp>
#include <cstdint>
#include <random>
#include <vector>

namespace TalTest::TurnPredictorTest {
namespace {

using TalIec61850Parser::wire::TurnPredictor;

/// How many of these patterns came when they were expected.
std::size_t confirmed(TurnPredictor& turns, std::vector<std::uint32_t> const& patterns) {
    std::size_t count = 0;
    for (std::uint32_t const pattern : patterns) {
        if (turns.expected() == pattern) {
            turns.confirm();
            ++count;
        } else {
            turns.note(pattern);
        }
    }
    return count;
}

TEST(TurnPredictor, ExpectsNothingAtFirst) {
    TurnPredictor turns;
    EXPECT_EQ(turns.expected(), TurnPredictor::kNone);
    turns.note(3);
    EXPECT_EQ(turns.expected(), TurnPredictor::kNone);
}

TEST(TurnPredictor, ExpectsAPatternAfterItself) {
    TurnPredictor turns;
    EXPECT_EQ(confirmed(turns, std::vector<std::uint32_t>(20, 7)), 17U);
}

TEST(TurnPredictor, LearnsARoundAndKeepsItWhenOneComesOutOfTurn) {
    TurnPredictor turns;
    for (int round = 0; round < 12; ++round) confirmed(turns, {0, 1, 2, 3});
    EXPECT_EQ(confirmed(turns, {0, 1, 2, 3, 0, 1}), 6U);
    EXPECT_EQ(confirmed(turns, {9}), 0U);
    EXPECT_EQ(confirmed(turns, {2, 3, 0, 1}), 4U);
}

TEST(TurnPredictor, LearnsANewOrder) {
    TurnPredictor turns;
    for (int round = 0; round < 12; ++round) confirmed(turns, {0, 1, 2, 3});
    for (int round = 0; round < 12; ++round) confirmed(turns, {3, 2, 1, 0});
    EXPECT_EQ(confirmed(turns, {3, 2, 1, 0}), 4U);
}

TEST(TurnPredictor, GivesUpWherePredictionsFail) {
    TurnPredictor turns;
    std::mt19937 random(1);
    std::vector<std::uint32_t> chaos(3000);
    for (std::uint32_t& pattern : chaos) pattern = static_cast<std::uint32_t>(random() % 50);
    EXPECT_LT(confirmed(turns, chaos), 300U);
    EXPECT_EQ(turns.expected(), TurnPredictor::kNone);
    std::vector<std::uint32_t> order;
    for (int i = 0; i < 600; ++i) order.push_back(static_cast<std::uint32_t>(i % 3));
    EXPECT_GT(confirmed(turns, order), 550U);
}

}  // namespace
}  // namespace TalTest::TurnPredictorTest
