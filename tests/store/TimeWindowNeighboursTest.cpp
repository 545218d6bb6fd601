#include <gtest/gtest.h>

#include <TalIec61850Parser/store/FilteredPackagesResult.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstdint>
#include <map>
#include <optional>
#include <ostream>
#include <vector>

#include "store/StoredTimes.hpp"

// Which files a time window has an entry for, and the packets on either side of it.

namespace TalTest::TimeWindowNeighboursTest {
namespace {

using namespace TalIec61850Parser;
using Positions = std::vector<std::uint64_t>;

TEST(FilteredPackages, AreNoneByDefault) {
    FilteredPackagesResult const result;
    EXPECT_TRUE(result.packages.empty());
    EXPECT_EQ(result.previousPackage, nullptr);
    EXPECT_EQ(result.nextPackage, nullptr);
}

/// What a window of a GOOSE stream of one file holds, and the packets on either side, by position.
struct Found {
    bool entry = false;
    Positions inside = {};
    std::optional<std::uint64_t> previous = {};
    std::optional<std::uint64_t> next = {};

    bool operator==(Found const&) const = default;
};

void PrintTo(Found const& found, std::ostream* out) {
    *out << (found.entry ? "entry" : "no entry") << testing::PrintToString(found.previous)
         << testing::PrintToString(found.inside) << testing::PrintToString(found.next);
}

Found find(Times const& times, Timest const& from, Timest const& to) {
    Goose const goose;
    PackageFile const& file = fill(goose, times);
    auto const window = goose.getfilteredPackages(from, to);
    auto const entry = window.find(&file);
    if (entry == window.end()) return {};
    Found found = {.entry = true};
    auto const& [packages, previous, next] = entry->second;
    for (Package const* const package : packages) found.inside.push_back(package->position);
    if (previous != nullptr) found.previous = previous->position;
    if (next != nullptr) found.next = next->position;
    return found;
}

Times const kTimes{{1, 0}, {2, 0}, {2, 0}, {3, 0}, {4, 0}, {4, 0}, {5, 0}};

TEST(GooseTimeWindow, BetweenTwoPacketsHasBothForNeighbours) {
    EXPECT_EQ(find(kTimes, {2, 1}, {2, kMax}), (Found{true, {}, 2, 3}));
    EXPECT_EQ(find(kTimes, {3, 1}, {3, 1}), (Found{true, {}, 3, 4}));
}

TEST(GooseTimeWindow, BeforeAllPacketsHasTheFirstForItsNextNeighbour) {
    EXPECT_EQ(find(kTimes, {0, 0}, {0, kMax}), (Found{true, {}, std::nullopt, 0}));
}

TEST(GooseTimeWindow, BehindAllPacketsHasTheLastForItsPreviousNeighbour) {
    EXPECT_EQ(find(kTimes, {5, 1}, kLastTime), (Found{true, {}, 6, std::nullopt}));
}

TEST(GooseTimeWindow, AroundAllPacketsHasNoNeighbours) {
    Positions const all{0, 1, 2, 3, 4, 5, 6};
    EXPECT_EQ(find(kTimes, kFirstTime, kLastTime), (Found{true, all, {}, {}}));
    EXPECT_EQ(find(kTimes, {1, 0}, {5, 0}), (Found{true, all, {}, {}}));
}

TEST(GooseTimeWindow, HasTheNearestPacketsOutsideItForNeighbours) {
    EXPECT_EQ(find(kTimes, {3, 0}, {3, 0}), (Found{true, {3}, 2, 4}));
    EXPECT_EQ(find(kTimes, {2, 0}, {4, 0}), (Found{true, {1, 2, 3, 4, 5}, 0, 6}));
    EXPECT_EQ(find(kTimes, {1, 0}, {3, 0}), (Found{true, {0, 1, 2, 3}, {}, 4}));
    EXPECT_EQ(find(kTimes, {2, 1}, {5, 0}), (Found{true, {3, 4, 5, 6}, 2, {}}));
}

TEST(GooseTimeWindow, HasNoPacketOfItsBoundsForANeighbour) {
    Times const times{{7, 7}, {7, 7}};
    EXPECT_EQ(find(times, {7, 7}, {7, 7}), (Found{true, {0, 1}, {}, {}}));
    EXPECT_EQ(find(times, {7, 6}, {7, 6}), (Found{true, {}, {}, 0}));
    EXPECT_EQ(find(times, {7, 8}, {7, 8}), (Found{true, {}, 1, {}}));
}

TEST(GooseTimeWindow, HasNoEntryWithoutPackets) {
    EXPECT_EQ(find({}, kFirstTime, kLastTime), Found{});
    EXPECT_EQ(find({}, kLastTime, kFirstTime), Found{});
}

TEST(GooseTimeWindow, ThatEndsBeforeItBeginsHasTheNeighboursOfItsBounds) {
    EXPECT_EQ(find(kTimes, {3, 9}, {3, 1}), (Found{true, {}, 3, 4}));
    EXPECT_EQ(find(kTimes, {5, 0}, {1, 0}), (Found{true, {}, 5, 1}));
    EXPECT_EQ(find(kTimes, {4, 0}, {2, 0}), (Found{true, {}, 3, 3}));
    EXPECT_EQ(find(kTimes, kLastTime, kFirstTime), (Found{true, {}, 6, 0}));
    EXPECT_EQ(find(kTimes, {9, 0}, {8, 0}), (Found{true, {}, 6, {}}));
    EXPECT_EQ(find(kTimes, {0, 9}, {0, 8}), (Found{true, {}, {}, 0}));
}

TEST(GooseTimeWindow, HasAnEntryForEveryFileWithPackets) {
    Goose const goose;
    PackageFile const& before = fill(goose, {{1, 0}, {2, 0}}, "before");
    PackageFile const& behind = fill(goose, {{8, 0}, {9, 0}}, "behind");
    fill(goose, {}, "empty");
    auto const window = goose.getfilteredPackages({4, 0}, {6, 0});
    ASSERT_EQ(window.size(), 2U);
    EXPECT_EQ(window.at(&before).previousPackage, &before.packages[1]);
    EXPECT_EQ(window.at(&before).nextPackage, nullptr);
    EXPECT_EQ(window.at(&behind).previousPackage, nullptr);
    EXPECT_EQ(window.at(&behind).nextPackage, &behind.packages[0]);
}

TEST(SvTimeWindow, HasAnEntryForFilesWithPacketsInsideOnly) {
    Sv const sv;
    fill(sv, {{1, 0}, {2, 0}}, "before");
    fill(sv, {{8, 0}, {9, 0}}, "behind");
    fill(sv, {{3, 0}, {7, 0}}, "around");
    EXPECT_TRUE(sv.getfilteredPackages({4, 0}, {6, 0}).empty());
    EXPECT_TRUE(sv.getfilteredPackages({6, 0}, {4, 0}).empty());
    EXPECT_TRUE(sv.getfilteredPackages({9, 0}, {1, 0}).empty());
    PackageFile const& file = fill(sv, {{4, 0}}, "inside");
    EXPECT_EQ(sv.getfilteredPackages({4, 0}, {6, 0}),
              (std::map<PackageFile const*, std::vector<Package const*>>{
                  {&file, {&file.packages.front()}}}));
}

}  // namespace
}  // namespace TalTest::TimeWindowNeighboursTest
