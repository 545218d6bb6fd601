#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/RecordMap.hpp>
#include <algorithm>
#include <cstdint>
#include <vector>

#include "index/RandomPicks.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"

namespace TalIec61850Analysis::RecordMapTest {
namespace {

using TalTest::below;

RecordMap mapOf(std::vector<std::uint64_t> const& offsets) {
    RecordMap map;
    for (std::uint64_t const offset : offsets) {
        map.add(offset);
    }
    return map;
}

std::vector<std::uint64_t> offsetsIn(std::string const& path) {
    std::vector<std::uint64_t> offsets;
    CaptureFile file(path);
    while (auto const* const view = file.next()) {
        offsets.push_back(view->record.fileOffset);
    }
    return offsets;
}

RC_GTEST_PROP(AnyRecordMap, FindsWhatWasAdded, ()) {
    // Few sizes, as traffic has, or any; now and then longer than two octets tell.
    std::size_t const count = below(4000);
    unsigned const sizes = 1 + below(below(2) == 0 ? 400 : 20'000);
    std::vector<std::uint64_t> offsets;
    std::uint64_t offset = 24 + below(100);
    for (std::size_t i = 0; i < count; ++i) {
        offsets.push_back(offset);
        offset += 1 + below(sizes);
        if (below(200) == 0) {
            offset += std::uint64_t{below(1'000'000)} << below(30);
        }
    }
    RecordMap const map = mapOf(offsets);
    RC_ASSERT(map.size() == count);
    RC_ASSERT(!map.offsetOf(count));
    for (std::size_t pick = 0; pick < 50 && count > 0; ++pick) {
        std::size_t const number = below(static_cast<unsigned>(count));
        RC_ASSERT(map.offsetOf(number) == offsets[number]);
        RC_ASSERT(map.numberAt(offsets[number]) == number);
        std::uint64_t const any = offsets[number] + below(20'000);
        auto const after = std::upper_bound(offsets.begin(), offsets.end(), any);
        RC_ASSERT(map.numberAt(any) == static_cast<std::size_t>(after - offsets.begin()) - 1);
    }
    if (count > 0) {
        RC_ASSERT(!map.numberAt(offsets.front() - 1));
    }
}

TEST(RecordMap, OfNothingHasNothing) {
    RecordMap const map;
    EXPECT_EQ(map.size(), 0U);
    EXPECT_FALSE(map.offsetOf(0));
    EXPECT_FALSE(map.numberAt(~std::uint64_t{0}));
}

TEST(RecordMap, TakesTwoOctetsForARecordOfAnyUsualSize) {
    RecordMap map;
    std::uint64_t offset = 24;
    std::uint32_t random = 1;
    constexpr std::size_t count = 500'000;
    for (std::size_t i = 0; i < count; ++i) {
        map.add(offset);
        random = random * 1'664'525U + 1'013'904'223U;
        offset += 76 + (random >> 16U) % 1500;
    }
    EXPECT_LE(static_cast<double>(map.memory()) / count, 2.05);
}

TEST(RecordMap, TakesLittleMoreThanAnOctetForRecordsOfFewSizes) {
    RecordMap map;
    std::uint64_t offset = 24;
    std::uint32_t random = 1;
    constexpr std::size_t count = 500'000;
    for (std::size_t i = 0; i < count; ++i) {
        map.add(offset);
        random = random * 1'664'525U + 1'013'904'223U;
        offset += 120 + 8 * ((random >> 16U) % 60);
    }
    EXPECT_LE(static_cast<double>(map.memory()) / count, 1.1);
}

TEST(RecordMap, OfRecordedAndOwnCapturesFindsEveryRecord) {
    auto paths = TalTest::ownCapturePaths();
    auto const recorded = TalTest::recordedCapturePaths();
    paths.insert(paths.end(), recorded.begin(), recorded.end());
    for (std::string const& path : paths) {
        SCOPED_TRACE(path);
        auto const offsets = offsetsIn(path);
        RecordMap const map = mapOf(offsets);
        ASSERT_EQ(map.size(), offsets.size());
        for (std::size_t i = 0; i < offsets.size(); i += 1 + i / 100) {
            ASSERT_EQ(map.offsetOf(i), offsets[i]);
            ASSERT_EQ(map.numberAt(offsets[i] + 15), i);
        }
        if (offsets.size() >= 4096) {
            EXPECT_LE(map.memory(), 2 * offsets.size());
        }
    }
}

}  // namespace
}  // namespace TalIec61850Analysis::RecordMapTest
