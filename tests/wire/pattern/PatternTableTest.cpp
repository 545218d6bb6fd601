// Patterns by number: which is found, which is refused.

#include <gtest/gtest.h>

#include <TalIec61850Parser/wire/pattern/PatternTable.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "support/Bytes.hpp"

namespace TalTest::PatternTableTest {
namespace {

using TalIec61850Parser::wire::PatternTable;

Bytes all(std::size_t size) { return repeat(0xFF, size); }

TEST(PatternTable, NumbersPatternsInTheOrderOfTheirComing) {
    auto const table = std::make_unique<PatternTable>();
    EXPECT_TRUE(table->isEmpty());
    EXPECT_EQ(table->find(Bytes(60), 0), PatternTable::kNone);
    for (std::uint8_t i = 0; i < 20; ++i) {
        std::size_t const size = i % 2U == 0 ? 60 : 64;
        ASSERT_EQ(table->add(repeat(i, size), all(size), 0), i);
    }
    EXPECT_FALSE(table->isEmpty());
    for (std::uint8_t i = 0; i < 20; ++i)
        EXPECT_EQ(table->find(repeat(i, i % 2U == 0 ? 60 : 64), 0), i);
}

TEST(PatternTable, MatchesAFrameOfItsSizeLanAndOctets) {
    auto const table = std::make_unique<PatternTable>();
    ASSERT_EQ(table->add(repeat(5, 60), all(60), 'A'), 0U);
    EXPECT_TRUE(table->matches(0, repeat(5, 60), 'A'));
    EXPECT_FALSE(table->matches(0, repeat(5, 60), 'B'));
    EXPECT_FALSE(table->matches(0, repeat(5, 61), 'A'));
    EXPECT_FALSE(table->matches(0, repeat(5, 59), 'A'));
    EXPECT_FALSE(table->matches(0, repeat(6, 60), 'A'));
    EXPECT_FALSE(table->matches(0, {}, 'A'));
}

TEST(PatternTable, RefusesWhatItCannotTellApart) {
    auto const table = std::make_unique<PatternTable>();
    Bytes mask(60);
    mask[10] = 0xFF;
    ASSERT_EQ(table->add(Bytes(60), mask, 0), 0U);
    Bytes same(60);
    same[20] = 1;
    EXPECT_EQ(table->add(same, mask, 0), PatternTable::kNone);
    EXPECT_FALSE(table->isFull());
    EXPECT_EQ(table->find(same, 0), 0U);
    same[10] = 1;
    EXPECT_EQ(table->add(same, mask, 0), 1U);
    EXPECT_EQ(table->find(same, 0), 1U);
    EXPECT_EQ(table->find(Bytes(60), 0), 0U);
}

TEST(PatternTable, RefusesFramesThatAreTooSmallOrTooLarge) {
    auto const table = std::make_unique<PatternTable>();
    for (std::size_t const size :
         {std::size_t{0}, std::size_t{15}, PatternTable::kMaxFrameSize + 1})
        EXPECT_EQ(table->add(Bytes(size), all(size), 0), PatternTable::kNone) << size;
    EXPECT_FALSE(table->isFull());
    EXPECT_EQ(table->add(Bytes(16), all(16), 0), 0U);
}

TEST(PatternTable, IsFullWhenItHasRoomForNoMore) {
    auto const table = std::make_unique<PatternTable>();
    std::uint32_t number = 0;
    for (; !table->isFull() && number < 2 * PatternTable::kMaxPatterns; ++number)
        static_cast<void>(table->add(concat({bigEndian(number, 4), Bytes(12)}), all(16), 0));
    EXPECT_TRUE(table->isFull());
    EXPECT_GE(number, PatternTable::kMaxPatterns);
    EXPECT_EQ(table->find(Bytes(16), 0), 0U);
}

}  // namespace
}  // namespace TalTest::PatternTableTest
