#include <gtest/gtest.h>

#include <TalIec61850Parser/store/FilteredPackagesResult.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "store/StoredTimes.hpp"

namespace TalTest::TimeWindowTest {
namespace {

using namespace TalIec61850Parser;
using Pointers = std::vector<Package const*>;
using Positions = std::vector<std::uint64_t>;

template <typename Stream>
using Window = decltype(std::declval<Stream const&>().getfilteredPackages(Timest{}, Timest{}));

static_assert(std::is_same_v<Window<Goose>, std::map<PackageFile const*, FilteredPackagesResult>>);
static_assert(std::is_same_v<Window<Sv>, std::map<PackageFile const*, Pointers>>);
static_assert(std::is_same_v<Window<Goose>::key_compare, std::less<PackageFile const*>>);
static_assert(std::is_same_v<decltype(FilteredPackagesResult::packages), Pointers>);
static_assert(std::is_same_v<decltype(FilteredPackagesResult::previousPackage), Package const*>);
static_assert(std::is_same_v<decltype(FilteredPackagesResult::nextPackage), Package const*>);

Pointers const& inside(FilteredPackagesResult const& result) { return result.packages; }
Pointers const& inside(Pointers const& result) { return result; }

/// The positions of what a window holds, file after file.
template <typename Stream>
Positions listed(Stream const& stream, Timest const& from, Timest const& to) {
    Positions positions;
    for (auto const& [file, result] : stream.getfilteredPackages(from, to)) {
        for (Package const* const package : inside(result)) positions.push_back(package->position);
    }
    return positions;
}

/// The same for a stream of one file with packets of these times.
template <typename Stream>
Positions listed(Times const& times, Timest const& from, Timest const& to) {
    Stream const stream;
    fill(stream, times);
    return listed(stream, from, to);
}

template <typename Stream>
class TimeWindow : public testing::Test {};
using Streams = testing::Types<Goose, Sv>;
TYPED_TEST_SUITE(TimeWindow, Streams);

TYPED_TEST(TimeWindow, OfAStreamWithoutFilesIsEmpty) {
    EXPECT_TRUE(TypeParam().getfilteredPackages(kFirstTime, kLastTime).empty());
    EXPECT_TRUE(TypeParam().getfilteredPackages(kLastTime, kFirstTime).empty());
}

TYPED_TEST(TimeWindow, LeavesAFileWithoutPacketsOut) {
    TypeParam const stream;
    fill(stream, {}, "empty");
    EXPECT_TRUE(stream.getfilteredPackages(kFirstTime, kLastTime).empty());
    PackageFile const& file = fill(stream, {{1, 0}}, "filled");
    auto const window = stream.getfilteredPackages(kFirstTime, kLastTime);
    ASSERT_EQ(window.size(), 1U);
    EXPECT_EQ(window.begin()->first, &file);
}

TYPED_TEST(TimeWindow, PointsAtTheStoredPackets) {
    TypeParam const stream;
    PackageFile const& file = fill(stream, {{1, 0}, {2, 0}, {2, 5}, {3, 0}});
    auto const window = stream.getfilteredPackages({2, 0}, {2, 5});
    ASSERT_EQ(window.size(), 1U);
    EXPECT_EQ(inside(window.at(&file)), (Pointers{&file.packages[1], &file.packages[2]}));
}

TYPED_TEST(TimeWindow, IncludesBothItsBounds) {
    Times const times{{1, 0}, {2, 0}, {3, 0}, {4, 0}};
    EXPECT_EQ(listed<TypeParam>(times, {2, 0}, {3, 0}), (Positions{1, 2}));
    EXPECT_EQ(listed<TypeParam>(times, {1, 0}, {4, 0}), (Positions{0, 1, 2, 3}));
    EXPECT_EQ(listed<TypeParam>(times, {1, 1}, {3, kMax}), (Positions{1, 2}));
}

TYPED_TEST(TimeWindow, OfASingleInstantHoldsEveryPacketOfThatTime) {
    Times const times{{1, 0}, {2, 7}, {2, 7}, {2, 7}, {3, 0}};
    EXPECT_EQ(listed<TypeParam>(times, {2, 7}, {2, 7}), (Positions{1, 2, 3}));
    EXPECT_EQ(listed<TypeParam>(times, {1, 0}, {1, 0}), (Positions{0}));
    EXPECT_EQ(listed<TypeParam>(times, {3, 0}, {3, 0}), (Positions{4}));
    EXPECT_EQ(listed<TypeParam>(times, {2, 6}, {2, 6}), Positions());
    EXPECT_EQ(listed<TypeParam>(times, {2, 8}, {2, 8}), Positions());
}

TYPED_TEST(TimeWindow, HoldsAllOrNothingOfPacketsOfOneTime) {
    Times const times(1000, Timest{9, 9});
    EXPECT_EQ(listed<TypeParam>(times, {9, 9}, {9, 9}).size(), 1000U);
    EXPECT_EQ(listed<TypeParam>(times, {9, 8}, {9, 10}).size(), 1000U);
    EXPECT_EQ(listed<TypeParam>(times, {0, 0}, {9, 8}).size(), 0U);
    EXPECT_EQ(listed<TypeParam>(times, {9, 10}, kLastTime).size(), 0U);
}

TYPED_TEST(TimeWindow, IsExactToTheNanosecondAcrossSeconds) {
    Times const times{{5, 0}, {5, 1}, {5, 999'999'999}, {6, 0}};
    EXPECT_EQ(listed<TypeParam>(times, {5, 1}, {5, 999'999'999}), (Positions{1, 2}));
    EXPECT_EQ(listed<TypeParam>(times, {5, 2}, {5, 999'999'998}), Positions());
    EXPECT_EQ(listed<TypeParam>(times, {5, 2}, {6, 0}), (Positions{2, 3}));
    EXPECT_EQ(listed<TypeParam>(times, {4, 999'999'999}, {5, 0}), (Positions{0}));
    EXPECT_EQ(listed<TypeParam>(times, {4, 0}, {4, 999'999'999}), Positions());
    EXPECT_EQ(listed<TypeParam>(times, {6, 0}, {7, 0}), (Positions{3}));
    EXPECT_EQ(listed<TypeParam>(times, {6, 1}, {7, 0}), Positions());
}

TYPED_TEST(TimeWindow, ReachesFromTheFirstToTheLastTimeThereIs) {
    Times const times{{0, 0}, {0, 1}, {0x7FFFFFFF, 3}, {0x80000000U, 2}, {kMax, 0}, {kMax, kMax}};
    EXPECT_EQ(listed<TypeParam>(times, kFirstTime, kLastTime), (Positions{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(listed<TypeParam>(times, kFirstTime, kFirstTime), (Positions{0}));
    EXPECT_EQ(listed<TypeParam>(times, kLastTime, kLastTime), (Positions{5}));
    EXPECT_EQ(listed<TypeParam>(times, {0, 1}, {kMax, kMax - 1}), (Positions{1, 2, 3, 4}));
    EXPECT_EQ(listed<TypeParam>(times, {0x7FFFFFFF, 0}, {0x80000000U, 2}), (Positions{2, 3}));
}

TYPED_TEST(TimeWindow, DoesNotNormaliseNanoseconds) {
    Times const times{{1, 999'999'999}, {1, 1'000'000'000}, {1, 2'500'000'000U}, {2, 0}, {3, 0}};
    EXPECT_EQ(listed<TypeParam>(times, {1, 1'000'000'000}, {1, kMax}), (Positions{1, 2}));
    EXPECT_EQ(listed<TypeParam>(times, {2, 0}, {3, 500'000'000}), (Positions{3, 4}));
    EXPECT_EQ(listed<TypeParam>(times, {0, 1'999'999'999}, {0, kMax}), Positions());
    EXPECT_EQ(listed<TypeParam>(times, {1, 0}, {1, 999'999'999}), (Positions{0}));
}

TYPED_TEST(TimeWindow, ThatEndsBeforeItBeginsHoldsNothing) {
    Times const times{{1, 0}, {2, 0}, {3, 0}, {3, 0}, {4, 0}};
    for (auto const& [from, to] : std::vector<std::pair<Timest, Timest>>{{{4, 0}, {1, 0}},
                                                                         {{3, 1}, {2, 0}},
                                                                         {{3, 0}, {2, kMax}},
                                                                         {{2, 2}, {2, 1}},
                                                                         {{1, 1}, {1, 0}},
                                                                         {kLastTime, kFirstTime},
                                                                         {{9, 0}, {8, 0}},
                                                                         {{0, 9}, {0, 8}}}) {
        EXPECT_EQ(listed<TypeParam>(times, from, to), Positions()) << from.seconds;
    }
    EXPECT_EQ(listed<TypeParam>(Times(5000, Timest{5, 0}), {6, 0}, {4, 0}), Positions());
}

TYPED_TEST(TimeWindow, CoversSeveralFilesInTheOrderOfTheirAddresses) {
    TypeParam const stream;
    std::map<PackageFile const*, Pointers> expected;
    for (std::uint32_t i = 0; i < 100; ++i) {
        // The later a file begins, the sooner it is added.
        PackageFile const& file =
            fill(stream, {{100 - i, 0}, {200, i}, {300, 0}}, "file " + std::to_string(i));
        expected[&file] = {&file.packages[1]};
    }
    std::map<PackageFile const*, Pointers> found;
    std::vector<PackageFile const*> order;
    for (auto const& [file, result] : stream.getfilteredPackages({101, 0}, {299, 0})) {
        found[file] = inside(result);
        order.push_back(file);
    }
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end(), std::less<PackageFile const*>()));
}

TYPED_TEST(TimeWindow, SearchesEachFileByItself) {
    TypeParam const stream;
    PackageFile const& early = fill(stream, {{1, 0}, {2, 0}, {3, 0}}, "early");
    PackageFile const& overlapping = fill(stream, {{2, 0}, {2, 0}, {4, 0}}, "overlapping");
    PackageFile const& late = fill(stream, {{9, 0}}, "late");
    auto const window = stream.getfilteredPackages({2, 0}, {3, 0});
    EXPECT_EQ(inside(window.at(&early)), (Pointers{&early.packages[1], &early.packages[2]}));
    EXPECT_EQ(inside(window.at(&overlapping)),
              (Pointers{&overlapping.packages[0], &overlapping.packages[1]}));
    EXPECT_EQ(window.contains(&late), (std::is_same_v<TypeParam, Goose>));
    EXPECT_EQ(listed(stream, {9, 0}, {9, 0}), (Positions{0}));
}

TYPED_TEST(TimeWindow, KeepsItsPointersWhilePacketsAndFilesAreAdded) {
    TypeParam const stream;
    PackageFile const& file = fill(stream, {{1, 0}, {2, 0}, {3, 0}});
    auto const window = stream.getfilteredPackages({1, 0}, {3, 0});
    Pointers const& packages = inside(window.at(&file));
    fill(stream, Times(100'000, Timest{4, 0}));
    for (int i = 0; i < 1000; ++i) static_cast<void>(stream.addFile("file " + std::to_string(i)));
    ASSERT_EQ(packages.size(), 3U);
    for (std::uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(packages[i], &file.packages[i]);
        EXPECT_EQ(*packages[i], (Package{.time = {i + 1, 0}, .position = i}));
    }
    EXPECT_EQ(listed(stream, {1, 0}, {3, 0}), (Positions{0, 1, 2}));
    EXPECT_EQ(listed(stream, {4, 0}, {4, 0}).size(), 100'000U);
}

TYPED_TEST(TimeWindow, ChangesNothing) {
    TypeParam const stream;
    stream.packetCount = 7;
    PackageFile const& file = fill(stream, {{3, 0}, {1, 0}, {2, 0}});
    auto const packages = file.packages;
    static_cast<void>(stream.getfilteredPackages({1, 0}, {2, 0}));
    EXPECT_EQ(file.packages, packages);
    EXPECT_EQ(stream.files.size(), 1U);
    EXPECT_EQ(stream.packetCount, 7U);
}

/// The positions from `first` on and before `behind`; none when that is before `first`.
template <typename Iterator>
Positions between(Iterator first, Iterator behind) {
    Positions positions;
    if (first < behind) {
        for (; first != behind; ++first) positions.push_back(first->position);
    }
    return positions;
}

TYPED_TEST(TimeWindow, OfAnUnsortedListIsThatOfTheBinarySearches) {
    Times times{{1, 0}, {2, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}};
    do {
        TypeParam const stream;
        auto const& packages = fill(stream, times).packages;
        for (std::uint32_t from = 0; from < 7; ++from) {
            for (std::uint32_t to = 0; to < 7; ++to) {
                auto const first =
                    std::lower_bound(packages.begin(), packages.end(), Timest{from, 0}, isBefore);
                auto const behind =
                    std::upper_bound(packages.begin(), packages.end(), Timest{to, 0}, isBehind);
                ASSERT_EQ(listed(stream, {from, 0}, {to, 0}), between(first, behind));
            }
        }
    } while (std::next_permutation(times.begin(), times.end()));
}

}  // namespace
}  // namespace TalTest::TimeWindowTest
