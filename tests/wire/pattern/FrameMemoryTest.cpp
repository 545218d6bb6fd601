// Which frames are taken for one that is remembered, whatever they are frames of.

#include <gtest/gtest.h>
#include <malloc.h>

#include <TalIec61850Parser/wire/pattern/FrameMemory.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <vector>

#include "support/Bytes.hpp"
#include "support/Sanitized.hpp"

namespace TalTest::FrameMemoryTest {
namespace {

/// As large as what the fast lane remembers.
struct Result {
    std::array<std::uint64_t, 4> unused{};
    std::uint16_t number = 0;
};
using FrameMemory = TalIec61850Parser::wire::FrameMemory<Result>;

/// A memory of numbered frames.
class Memory {
public:
    void remember(Bytes const& frame, Bytes const& mask, std::uint16_t number,
                  std::uint8_t prpLan = 0) {
        memory_->remember(frame, mask, prpLan, {.unused = {}, .number = number});
    }
    [[nodiscard]] std::optional<std::uint16_t> find(Bytes const& frame, std::uint8_t prpLan = 0) {
        return numberOf(memory_->find(frame, prpLan));
    }
    [[nodiscard]] std::optional<std::uint16_t> findNextInTurn(Bytes const& frame,
                                                              std::uint8_t prpLan = 0) {
        return numberOf(memory_->findNextInTurn(frame, prpLan));
    }
    [[nodiscard]] bool wantsMore() { return memory_->wantsMore(); }

private:
    static std::optional<std::uint16_t> numberOf(Result const* result) {
        return result == nullptr ? std::nullopt : std::optional(result->number);
    }

    std::unique_ptr<FrameMemory> memory_ = std::make_unique<FrameMemory>();
};

Bytes randomOctets(std::mt19937& random, std::size_t size) {
    Bytes octets(size);
    for (std::uint8_t& octet : octets) octet = static_cast<std::uint8_t>(random());
    return octets;
}

/// All octets count but each third.
Bytes someOf(std::size_t size) {
    Bytes mask(size, 0xFF);
    for (std::size_t i = 1; i < size; i += 3) mask[i] = 0;
    return mask;
}

Bytes withChanged(Bytes frame, std::size_t position) {
    frame[position] = static_cast<std::uint8_t>(frame[position] + 1);
    return frame;
}

/// A frame of 64 octets that holds its number.
Bytes numbered(std::uint32_t number) {
    return concat({Bytes(30), bigEndian(number, 4), Bytes(30)});
}

constexpr std::size_t kNumberedSize = 64;

TEST(FrameMemory, KnowsNothingAtFirst) {
    Memory memory;
    EXPECT_EQ(memory.find(Bytes(60)), std::nullopt);
    EXPECT_EQ(memory.find({}), std::nullopt);
    EXPECT_EQ(memory.findNextInTurn(Bytes(60)), std::nullopt);
    EXPECT_EQ(memory.findNextInTurn({}), std::nullopt);
    EXPECT_TRUE(memory.wantsMore());
}

TEST(FrameMemory, FindsAFrameWhoseCountingOctetsAgree) {
    std::mt19937 random(1);
    for (std::size_t const size : {16U, 17U, 31U, 32U, 33U, 60U, 127U, 300U}) {
        Memory memory;
        Bytes const frame = randomOctets(random, size);
        Bytes const mask = someOf(size);
        memory.remember(frame, mask, 7);
        EXPECT_EQ(memory.find(frame), 7);
        Bytes free = frame;
        for (std::size_t i = 0; i < size; ++i) {
            Bytes const changed = withChanged(frame, i);
            EXPECT_EQ(memory.find(changed).has_value(), mask[i] == 0) << i << " of " << size;
            if (mask[i] == 0) free[i] = static_cast<std::uint8_t>(random());
        }
        EXPECT_EQ(memory.find(free), 7);
    }
}

TEST(FrameMemory, FindsNoFrameOfAnotherSizeOrLan) {
    for (std::size_t const size : {16U, 60U, 2000U}) {
        Memory memory;
        memory.remember(Bytes(size), Bytes(size, 0xFF), 7, 'A');
        EXPECT_EQ(memory.find(Bytes(size), 'A'), 7);
        EXPECT_EQ(memory.find(Bytes(size), 'B'), std::nullopt);
        EXPECT_EQ(memory.find(Bytes(size)), std::nullopt);
        // Sizes that are held as fewer bits would be mistaken for this one.
        for (std::size_t const more : {1U, 16U, 2048U, 1U << 16U, 1U << 24U})
            EXPECT_EQ(memory.find(Bytes(size + more), 'A'), std::nullopt) << more;
        for (unsigned prpLan = 0; prpLan < 256; ++prpLan)
            for (std::size_t const less : {0U, 1U, 2U})
                EXPECT_EQ(
                    memory.find(Bytes(size - less), static_cast<std::uint8_t>(prpLan)).has_value(),
                    less == 0 && prpLan == 'A');
    }
}

TEST(FrameMemory, FindsNoLargerFrameThatBeginsLikeIt) {
    // Among so many sizes there are some that lie in one list.
    Memory memory;
    memory.remember(Bytes(60), Bytes(60, 0xFF), 7);
    for (std::size_t size = 61; size < 12'000; ++size)
        for (std::uint8_t const prpLan : Bytes{0, 'A', 'B'})
            ASSERT_EQ(memory.find(Bytes(size), prpLan), std::nullopt) << size;
}

TEST(FrameMemory, ExpectsNoFrameOfAnotherSizeOrLan) {
    Memory memory;
    memory.remember(Bytes(60), Bytes(60, 0xFF), 7, 'A');
    auto const expectIt = [&memory] {
        ASSERT_EQ(memory.find(Bytes(60), 'A'), 7);
        ASSERT_EQ(memory.find(Bytes(60), 'A'), 7);
    };
    expectIt();
    EXPECT_EQ(memory.findNextInTurn(Bytes(60), 'A'), 7);
    for (std::uint8_t const prpLan : {std::uint8_t{0}, std::uint8_t{'B'}}) {
        expectIt();
        EXPECT_EQ(memory.findNextInTurn(Bytes(60), prpLan), std::nullopt);
    }
    for (std::size_t const size :
         {std::size_t{0}, std::size_t{59}, std::size_t{61}, std::size_t{60} + (1U << 8U),
          std::size_t{60} + (1U << 16U), std::size_t{60} + (1U << 24U)}) {
        expectIt();
        EXPECT_EQ(memory.findNextInTurn(Bytes(size), 'A'), std::nullopt) << size;
    }
}

TEST(FrameMemory, KeepsLansApart) {
    Memory memory;
    for (std::uint8_t const prpLan : Bytes{0, 'A', 'B'})
        memory.remember(Bytes(60), Bytes(60, 0xFF), prpLan, prpLan);
    for (std::uint8_t const prpLan : Bytes{0, 'A', 'B'})
        EXPECT_EQ(memory.find(Bytes(60), prpLan), prpLan);
}

TEST(FrameMemory, KeepsShapesOfOneSizeApart) {
    Memory memory;
    Bytes first(60, 0xFF);
    Bytes second(60, 0xFF);
    first[20] = 0;
    second[40] = 0;
    Bytes const a = repeat(1, 60);
    Bytes const b = repeat(2, 60);
    memory.remember(a, first, 1);
    memory.remember(b, second, 2);
    EXPECT_EQ(memory.find(a), 1);
    EXPECT_EQ(memory.find(withChanged(a, 20)), 1);
    EXPECT_EQ(memory.find(withChanged(a, 40)), std::nullopt);
    EXPECT_EQ(memory.find(b), 2);
    EXPECT_EQ(memory.find(withChanged(b, 20)), std::nullopt);
    EXPECT_EQ(memory.find(withChanged(b, 40)), 2);
}

TEST(FrameMemory, NeverMistakesOneForAnother) {
    // Few values in many places, few masks: most frames are nearly like another.
    std::mt19937 random(1);
    constexpr std::size_t size = 70;
    std::vector<Bytes> masks;
    for (int i = 0; i < 12; ++i) {
        masks.emplace_back(size);
        for (std::uint8_t& octet : masks.back()) octet = random() % 3 == 0 ? 0 : 0xFF;
    }
    struct Remembered {
        Bytes frame;
        Bytes mask;
        std::uint8_t prpLan;
    };
    std::vector<Remembered> all;
    Memory memory;
    std::size_t found = 0;
    for (int i = 0; i < 20'000; ++i) {
        Bytes frame(size);
        for (int changes = 0; changes < 2; ++changes)
            frame[random() % size] = static_cast<std::uint8_t>(random() % 3);
        auto const prpLan = static_cast<std::uint8_t>(random() % 2);
        auto number = memory.findNextInTurn(frame, prpLan);
        if (!number) number = memory.find(frame, prpLan);
        if (!number) {
            if (!memory.wantsMore()) continue;
            Remembered const next = {frame, masks[random() % masks.size()], prpLan};
            memory.remember(next.frame, next.mask, static_cast<std::uint16_t>(all.size()), prpLan);
            all.push_back(next);
            continue;
        }
        ++found;
        Remembered const& like = all.at(*number);
        ASSERT_EQ(like.prpLan, prpLan);
        for (std::size_t at = 0; at < size; ++at)
            ASSERT_TRUE(like.mask[at] == 0 || like.frame[at] == frame[at]) << at;
    }
    EXPECT_GT(found, 5000U);
}

TEST(FrameMemory, TellsThousandsApart) {
    Memory memory;
    Bytes const mask(kNumberedSize, 0xFF);
    for (std::uint32_t i = 0; i < 20'000; ++i)
        memory.remember(numbered(i), mask, static_cast<std::uint16_t>(i));
    std::size_t found = 0;
    for (std::uint32_t i = 0; i < 20'000; ++i) {
        auto const number = memory.find(numbered(i));
        found += number ? 1 : 0;
        if (number) {
            ASSERT_EQ(*number, i);
        }
        ASSERT_EQ(memory.find(numbered(i + 20'000)), std::nullopt);
    }
    EXPECT_GT(found, 19'900U);
}

TEST(FrameMemory, RemembersFramesOfTheSizesThatItSays) {
    Memory memory;
    std::uint16_t number = 0;
    for (std::size_t const size : {std::size_t{0}, std::size_t{1}, std::size_t{15}, std::size_t{16},
                                   FrameMemory::kMaxFrameSize - 1, FrameMemory::kMaxFrameSize,
                                   FrameMemory::kMaxFrameSize + 1, std::size_t{65'535}}) {
        memory.remember(Bytes(size), Bytes(size, 0xFF), ++number);
        bool const fits = size >= 16 && size <= FrameMemory::kMaxFrameSize;
        EXPECT_EQ(memory.find(Bytes(size)).has_value(), fits) << size;
        if (fits) {
            EXPECT_EQ(memory.find(Bytes(size)), number);
            EXPECT_EQ(memory.find(withChanged(Bytes(size), size - 1)), std::nullopt);
            EXPECT_EQ(memory.find(withChanged(Bytes(size), 0)), std::nullopt);
        }
    }
}

TEST(FrameMemory, ExpectsTheFrameWhoseTurnItIs) {
    Memory memory;
    Bytes const mask(kNumberedSize, 0xFF);
    for (std::uint16_t i = 0; i < 4; ++i) memory.remember(numbered(i), mask, i);
    for (int round = 0; round < 12; ++round)
        for (std::uint16_t i = 0; i < 4; ++i) ASSERT_EQ(memory.find(numbered(i)), i);
    for (int round = 0; round < 3; ++round)
        for (std::uint16_t i = 0; i < 4; ++i) {
            EXPECT_EQ(memory.findNextInTurn(numbered((i + 1) % 4U)), std::nullopt);
            EXPECT_EQ(memory.findNextInTurn(numbered(i)), i);
        }
    // One that comes out of turn is found all the same, and does not disturb the others.
    EXPECT_EQ(memory.find(numbered(2)), 2);
    EXPECT_EQ(memory.findNextInTurn(numbered(0)), 0);
    EXPECT_EQ(memory.findNextInTurn(numbered(1)), 1);
}

TEST(FrameMemory, NeverExpectsAnotherFrameThanItSays) {
    Memory memory;
    std::mt19937 random(1);
    Bytes const mask(kNumberedSize, 0xFF);
    for (std::uint16_t i = 0; i < 20; ++i) memory.remember(numbered(i), mask, i);
    for (int i = 0; i < 2000; ++i) {
        auto const next = static_cast<std::uint16_t>(random() % 20);
        auto const expected = memory.findNextInTurn(numbered(next));
        if (expected) {
            ASSERT_EQ(*expected, next);
        } else {
            ASSERT_EQ(memory.find(numbered(next)), next);
        }
    }
}

TEST(FrameMemory, TakesInNothingMoreWhenFull) {
    Memory memory;
    Bytes const mask(kNumberedSize, 0xFF);
    std::uint32_t count = 0;
    while (memory.wantsMore() && count < 100'000) {
        memory.remember(numbered(count), mask, static_cast<std::uint16_t>(count));
        ++count;
    }
    // Not all of them find a place.
    EXPECT_LT(count, FrameMemory::kMaxPatterns * 5 / 4);
    EXPECT_GT(count, FrameMemory::kMaxPatterns / 2);
    EXPECT_EQ(memory.find(numbered(5)), 5);
    EXPECT_FALSE(memory.wantsMore());
}

TEST(FrameMemory, StartsAfreshOnceItHasFailedOften) {
    Memory memory;
    Bytes const mask(kNumberedSize, 0xFF);
    for (std::uint32_t i = 0; memory.wantsMore(); ++i)
        memory.remember(numbered(i), mask, static_cast<std::uint16_t>(i));
    std::size_t failures = 0;
    while (!memory.wantsMore()) {
        ASSERT_EQ(memory.find(numbered(5)), 5);
        ASSERT_LT(++failures, 10 * FrameMemory::kMaxPatterns);
    }
    EXPECT_GE(failures, 2 * FrameMemory::kMaxPatterns);
    EXPECT_EQ(memory.findNextInTurn(numbered(5)), std::nullopt);
    EXPECT_EQ(memory.find(numbered(5)), std::nullopt);
    memory.remember(numbered(5), mask, 6);
    EXPECT_EQ(memory.find(numbered(5)), 6);
}

TEST(FrameMemory, FillsUpWithShapesToo) {
    Memory memory;
    std::mt19937 random(1);
    std::uint32_t count = 0;
    for (; memory.wantsMore() && count < 100'000; ++count) {
        std::size_t const size = 16 + count % 1000;
        Bytes mask(size);
        for (std::uint8_t& octet : mask) octet = random() % 2 == 0 ? 0 : 0xFF;
        mask[0] = 0xFF;
        memory.remember(randomOctets(random, size), mask, static_cast<std::uint16_t>(count));
    }
    EXPECT_LT(count, 1000U);
    EXPECT_FALSE(memory.wantsMore());
}

TEST(FrameMemory, FillsUpWithLargeFrames) {
    Memory memory;
    Bytes const mask(FrameMemory::kMaxFrameSize, 0xFF);
    std::uint16_t count = 0;
    for (; memory.wantsMore() && count < 2000; ++count) {
        Bytes frame(FrameMemory::kMaxFrameSize);
        frame[100] = static_cast<std::uint8_t>(count);
        frame[101] = static_cast<std::uint8_t>(count >> 8U);
        memory.remember(frame, mask, count);
    }
    EXPECT_LT(count, 150U);
    EXPECT_GT(count, 100U);
    EXPECT_FALSE(memory.wantsMore());
}

TEST(FrameMemory, TakesAtMostEightMiB) {
    if (isSanitized) GTEST_SKIP() << "the heap is the sanitizer's own";
    auto const heapInUse = [] {
        auto const heap = mallinfo2();
        return heap.uordblks + heap.hblkhd;
    };
    std::size_t const before = heapInUse();
    Memory memory;
    // As many shapes as there is room for, then as many patterns of one.
    for (std::size_t size = 20; size < 8000; ++size) {
        Bytes mask(size);
        std::fill_n(mask.begin(), 16, std::uint8_t{0xFF});
        ASSERT_TRUE(memory.wantsMore());
        memory.remember(Bytes(size), mask, 1);
    }
    constexpr std::size_t likeSize = 240;
    std::uint32_t count = 0;
    for (; memory.wantsMore(); ++count)
        memory.remember(concat({bigEndian(count, 4), Bytes(likeSize - 4)}), Bytes(likeSize, 0xFF),
                        1);
    EXPECT_GT(count, 8000U);
    EXPECT_LT(heapInUse() - before, std::size_t{8} << 20U);
}

TEST(FrameMemory, KeepsTheLatestShapesOfASize) {
    Memory memory;
    auto const maskOf = [](std::size_t number) {
        Bytes mask(60, 0xFF);
        mask[number] = 0;
        return mask;
    };
    auto const frameOf = [](std::uint16_t number) {
        return repeat(static_cast<std::uint8_t>(number + 1), 60);
    };
    for (std::uint16_t i = 0; i < 30; ++i) memory.remember(frameOf(i), maskOf(i), i);
    for (std::uint16_t i = 0; i < 30; ++i)
        if (i < 15 || i >= 30 - 8) {
            EXPECT_EQ(memory.find(frameOf(i)).has_value(), i >= 15) << i;
        }
    for (std::uint16_t i = 0; i < 15; ++i) {
        memory.remember(frameOf(i), maskOf(i), i);
        EXPECT_EQ(memory.find(frameOf(i)), i);
    }
}

}  // namespace
}  // namespace TalTest::FrameMemoryTest
