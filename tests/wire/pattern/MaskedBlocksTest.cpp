// Octets compared under a mask, sixteen at a time.

#include <gtest/gtest.h>

#include <TalIec61850Parser/wire/pattern/MaskedBlocks.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/Bytes.hpp"

namespace TalTest::MaskedBlocksTest {
namespace {

using TalIec61850Parser::wire::MaskedBlocks;

Bytes maskOf(std::size_t size, std::initializer_list<std::size_t> significant) {
    Bytes mask(size);
    for (std::size_t const index : significant) mask[index] = 0xFF;
    return mask;
}

Bytes withChanged(Bytes frame, std::size_t index) {
    frame[index] = static_cast<std::uint8_t>(frame[index] ^ 0x40U);
    return frame;
}

TEST(MaskedBlocks, MatchWhereEverySignificantOctetAgrees) {
    for (std::size_t const size : {16U, 17U, 33U, 60U}) {
        MaskedBlocks blocks;
        Bytes const significant = maskOf(size, {0, 5, 15, size - 1});
        auto const mask = blocks.addMask(significant);
        Bytes const frame = repeat(0x55, size);
        auto const held = blocks.hold(frame, mask);
        EXPECT_TRUE(blocks.matches(frame.data(), mask, held));
        for (std::size_t i = 0; i < size; ++i)
            EXPECT_EQ(blocks.matches(withChanged(frame, i).data(), mask, held), significant[i] == 0)
                << i << " of " << size;
    }
}

TEST(MaskedBlocks, MatchAllWhereEachOfThemDoes) {
    constexpr std::size_t kSize = 60;
    MaskedBlocks blocks;
    blocks.addMask(maskOf(kSize, {7}));
    Bytes const significant = maskOf(kSize, {0, 5, 15, 33, kSize - 1});
    auto const mask = blocks.addMask(significant);
    Bytes const frame = repeat(0x55, kSize);
    blocks.hold(repeat(0x11, kSize), mask);
    auto const held = blocks.hold(frame, mask);
    EXPECT_TRUE(blocks.matchAll({}, mask, held));
    for (std::size_t other = 0; other < 5; ++other) {
        for (std::size_t i = 0; i < kSize; ++i) {
            Bytes const changed = withChanged(frame, i);
            std::vector<std::uint8_t const*> frames(5, frame.data());
            EXPECT_TRUE(blocks.matchAll(frames, mask, held));
            frames[other] = changed.data();
            EXPECT_EQ(blocks.matchAll(frames, mask, held), significant[i] == 0)
                << i << " of frame " << other;
        }
    }
}

TEST(MaskedBlocks, TakeABlockOnlyWhereSomethingIsSignificant) {
    MaskedBlocks blocks;
    EXPECT_EQ(blocks.addMask(maskOf(100, {})).count, 0U);
    EXPECT_EQ(blocks.addMask(maskOf(100, {0, 15})).count, 1U);
    EXPECT_EQ(blocks.addMask(maskOf(100, {0, 16})).count, 2U);
    EXPECT_EQ(blocks.addMask(maskOf(100, {40, 55, 99})).count, 2U);
    EXPECT_EQ(blocks.addMask(repeat(0xFF, 100)).count, 7U);
    EXPECT_EQ(blocks.maskBlockCount(), 12U);
}

TEST(MaskedBlocks, NeverReachPastTheFrame) {
    MaskedBlocks blocks;
    auto const mask = blocks.addMask(maskOf(20, {19}));
    ASSERT_EQ(mask.count, 1U);
    EXPECT_EQ(blocks.wordOf(mask, 0).index, 4U);
    EXPECT_EQ(blocks.wordOf(mask, 0).mask, 0U);
    EXPECT_EQ(blocks.wordOf(mask, 1).index, 12U);
    EXPECT_EQ(blocks.wordOf(mask, 1).mask, std::uint64_t{0xFF} << 56U);
}

TEST(MaskedBlocks, AreEqualWithEqualMasksOnly) {
    MaskedBlocks blocks;
    auto const first = blocks.addMask(maskOf(60, {3, 40}));
    EXPECT_TRUE(blocks.areEqual(first, blocks.addMask(maskOf(60, {3, 40}))));
    EXPECT_FALSE(blocks.areEqual(first, blocks.addMask(maskOf(60, {3, 41}))));
    EXPECT_FALSE(blocks.areEqual(first, blocks.addMask(maskOf(60, {4, 40}))));
    EXPECT_FALSE(blocks.areEqual(first, blocks.addMask(maskOf(60, {3}))));
    EXPECT_FALSE(blocks.areEqual(first, blocks.addMask(maskOf(60, {3, 40, 59}))));
}

TEST(MaskedBlocks, HoldWordsWithoutWhatIsNotSignificant) {
    MaskedBlocks blocks;
    auto const mask = blocks.addMask(maskOf(32, {0, 9}));
    Bytes frame(32);
    frame[0] = 0x11;
    frame[1] = 0x22;
    frame[9] = 0x33;
    auto const held = blocks.hold(frame, mask);
    ASSERT_EQ(blocks.wordCount(mask), 2U);
    EXPECT_EQ(blocks.heldWord(held, 0), 0x11U);
    EXPECT_EQ(blocks.heldWord(held, 1), 0x3300U);
}

TEST(MaskedBlocks, TakeBackWhatCameLast) {
    MaskedBlocks blocks;
    auto const first = blocks.addMask(repeat(0xFF, 16));
    auto const held = blocks.hold(repeat(1, 16), first);
    auto const second = blocks.addMask(repeat(0xFF, 48));
    blocks.releaseFrom(blocks.hold(repeat(2, 48), second));
    blocks.removeLast(second);
    EXPECT_EQ(blocks.maskBlockCount(), 1U);
    EXPECT_EQ(blocks.heldBlockCount(), 1U);
    EXPECT_TRUE(blocks.matches(repeat(1, 16).data(), first, held));
}

}  // namespace
}  // namespace TalTest::MaskedBlocksTest
