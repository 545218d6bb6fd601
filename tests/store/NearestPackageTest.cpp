#include <gtest/gtest.h>

#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "store/StoredTimes.hpp"

namespace TalTest::NearestPackageTest {
namespace {

using namespace TalIec61850Parser;
using Place = std::deque<Package>::const_iterator;
using Places = std::map<PackageFile const*, Place>;

template <typename Stream>
using InFile = decltype(std::declval<Stream const&>().findFileNearestPackageIterator(
    std::declval<PackageFile const*>(), Timest{}));
template <typename Stream>
using InFiles = decltype(std::declval<Stream const&>().findFilesNearestPackageIterator(Timest{}));

static_assert(std::is_same_v<InFile<Goose>, Place>);
static_assert(std::is_same_v<InFile<Sv>, Place>);
static_assert(std::is_same_v<InFiles<Goose>, Places>);
static_assert(std::is_same_v<InFiles<Sv>, Places>);
static_assert(std::is_same_v<Places::key_compare, std::less<PackageFile const*>>);

/// Which packet of a file with these times is found; nullopt when none is.
template <typename Stream>
std::optional<std::ptrdiff_t> nearest(Times const& times, Timest const& time) {
    Stream const stream;
    PackageFile const& file = fill(stream, times, "a");
    Place const place = stream.findFileNearestPackageIterator(&file, time);
    if (place == file.packages.end()) return std::nullopt;
    return place - file.packages.begin();
}

template <typename Stream>
class NearestPackage : public testing::Test {};
using Streams = testing::Types<Goose, Sv>;
TYPED_TEST_SUITE(NearestPackage, Streams);

TYPED_TEST(NearestPackage, OfAFileWithoutPacketsIsItsEnd) {
    EXPECT_EQ(nearest<TypeParam>({}, {0, 0}), std::nullopt);
    EXPECT_EQ(nearest<TypeParam>({}, {kMax, kMax}), std::nullopt);
}

TYPED_TEST(NearestPackage, IsTheLastBeforeTheTime) {
    Times const times{{1, 0}, {2, 0}, {3, 0}};
    EXPECT_EQ(nearest<TypeParam>(times, {1, 1}), 0);
    EXPECT_EQ(nearest<TypeParam>(times, {1, kMax}), 0);
    EXPECT_EQ(nearest<TypeParam>(times, {2, 1}), 1);
    EXPECT_EQ(nearest<TypeParam>(times, {3, 1}), 2);
}

TYPED_TEST(NearestPackage, IsNoneAtTheTimeOfTheFirst) {
    EXPECT_EQ(nearest<TypeParam>({{5, 5}, {6, 0}}, {5, 5}), std::nullopt);
    EXPECT_EQ(nearest<TypeParam>({{5, 5}, {6, 0}}, {5, 6}), 0);
    EXPECT_EQ(nearest<TypeParam>({{5, 5}, {6, 0}}, {5, 4}), std::nullopt);
    EXPECT_EQ(nearest<TypeParam>({{5, 5}}, {5, 5}), std::nullopt);
    EXPECT_EQ(nearest<TypeParam>({{5, 5}}, {5, 6}), 0);
}

TYPED_TEST(NearestPackage, IsNeverAtTheTimeItself) {
    Times const times{{1, 0}, {2, 0}, {3, 0}};
    EXPECT_EQ(nearest<TypeParam>(times, {2, 0}), 0);
    EXPECT_EQ(nearest<TypeParam>(times, {3, 0}), 1);
}

TYPED_TEST(NearestPackage, IsTheLastOneBehindAllTimes) {
    EXPECT_EQ(nearest<TypeParam>({{1, 0}, {2, 0}, {3, 0}}, {kMax, kMax}), 2);
    EXPECT_EQ(nearest<TypeParam>(Times(1000, Timest{4, 4}), {4, 5}), 999);
}

TYPED_TEST(NearestPackage, IsTheLastOfEqualTimes) {
    Times const times{{1, 0}, {2, 0}, {2, 0}, {2, 0}, {3, 0}};
    EXPECT_EQ(nearest<TypeParam>(times, {2, 1}), 3);
    EXPECT_EQ(nearest<TypeParam>(times, {3, 0}), 3);
    EXPECT_EQ(nearest<TypeParam>(times, {2, 0}), 0);
    EXPECT_EQ(nearest<TypeParam>(Times(3, Timest{2, 0}), {2, 0}), std::nullopt);
}

TYPED_TEST(NearestPackage, IsExactToTheNanosecondAcrossSeconds) {
    Times const times{{5, 999'999'999}, {6, 0}};
    EXPECT_EQ(nearest<TypeParam>(times, {5, 999'999'998}), std::nullopt);
    EXPECT_EQ(nearest<TypeParam>(times, {5, 999'999'999}), std::nullopt);
    EXPECT_EQ(nearest<TypeParam>(times, {6, 0}), 0);
    EXPECT_EQ(nearest<TypeParam>(times, {6, 1}), 1);
}

TYPED_TEST(NearestPackage, IsFoundFromTheFirstToTheLastTimeThereIs) {
    Times const times{{0, 0}, {0x7FFFFFFF, 0}, {0x80000000U, 0}, {kMax, kMax}};
    EXPECT_EQ(nearest<TypeParam>(times, {0, 0}), std::nullopt);
    EXPECT_EQ(nearest<TypeParam>(times, {0, 1}), 0);
    EXPECT_EQ(nearest<TypeParam>(times, {0x80000000U, 0}), 1);
    EXPECT_EQ(nearest<TypeParam>(times, {0x80000000U, 1}), 2);
    EXPECT_EQ(nearest<TypeParam>(times, {kMax, kMax}), 2);
}

TYPED_TEST(NearestPackage, DoesNotNormaliseNanoseconds) {
    Times const times{{1, 999'999'999}, {1, 1'000'000'000}, {1, kMax}, {2, 0}};
    EXPECT_EQ(nearest<TypeParam>(times, {1, 1'000'000'000}), 0);
    EXPECT_EQ(nearest<TypeParam>(times, {1, 1'000'000'001}), 1);
    EXPECT_EQ(nearest<TypeParam>(times, {2, 0}), 2);
    EXPECT_EQ(nearest<TypeParam>(times, {0, kMax}), std::nullopt);
}

TYPED_TEST(NearestPackage, OfAnUnsortedListIsThatOfTheBinarySearch) {
    Times times{{1, 0}, {2, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}};
    do {
        TypeParam const stream;
        PackageFile const& file = fill(stream, times, "a");
        for (std::uint32_t seconds = 0; seconds < 7; ++seconds) {
            Place const bound = std::lower_bound(file.packages.begin(), file.packages.end(),
                                                 Timest{seconds, 0}, isBefore);
            Place const expected =
                bound == file.packages.begin() ? file.packages.end() : std::prev(bound);
            ASSERT_EQ(stream.findFileNearestPackageIterator(&file, {seconds, 0}), expected);
        }
    } while (std::next_permutation(times.begin(), times.end()));
}

TYPED_TEST(NearestPackage, PointsIntoTheStoredList) {
    TypeParam const stream;
    PackageFile const& file = fill(stream, {{1, 0}, {2, 0}}, "a");
    Place const place = stream.findFileNearestPackageIterator(&file, {2, 0});
    EXPECT_EQ(&*place, &file.packages[0]);
    EXPECT_EQ(std::next(place)->time, (Timest{2, 0}));
    EXPECT_EQ(file.packages.size(), 2U);
}

TYPED_TEST(NearestPackage, LooksAtTheGivenFileOnly) {
    TypeParam const stream;
    fill(stream, {{2, 0}, {3, 0}}, "nearer");
    PackageFile const& file = fill(stream, {{1, 0}, {9, 0}}, "a");
    EXPECT_EQ(&*stream.findFileNearestPackageIterator(&file, {4, 0}), &file.packages[0]);
    EXPECT_EQ(stream.findFileNearestPackageIterator(&file, {1, 0}), file.packages.end());
}

TYPED_TEST(NearestPackage, IsLookedForAmongPacketsAddedMeanwhile) {
    TypeParam const stream;
    PackageFile const& file = fill(stream, {{1, 0}}, "a");
    Package const* const first = &*stream.findFileNearestPackageIterator(&file, {9, 0});
    fill(stream, Times(10'000, Timest{2, 0}), "a");
    EXPECT_EQ(first, &file.packages.front());
    EXPECT_EQ(*first, (Package{.time = {1, 0}, .position = 0}));
    EXPECT_EQ(&*stream.findFileNearestPackageIterator(&file, {9, 0}), &file.packages.back());
    EXPECT_EQ(&*stream.findFileNearestPackageIterator(&file, {2, 0}), first);
}

template <typename Stream>
class NearestPackages : public testing::Test {};
TYPED_TEST_SUITE(NearestPackages, Streams);

TYPED_TEST(NearestPackages, OfAStreamWithoutFilesAreNone) {
    EXPECT_TRUE(TypeParam().findFilesNearestPackageIterator({0, 0}).empty());
    EXPECT_TRUE(TypeParam().findFilesNearestPackageIterator({kMax, kMax}).empty());
}

TYPED_TEST(NearestPackages, LeaveFilesWithoutAPacketBeforeTheTimeOut) {
    TypeParam const stream;
    PackageFile const& early = fill(stream, {{1, 0}, {3, 0}}, "early");
    PackageFile const& justBefore = fill(stream, {{4, 999'999'999}}, "just before");
    fill(stream, {}, "empty");
    fill(stream, {{5, 0}}, "at the time");
    fill(stream, {{6, 0}}, "later");
    EXPECT_EQ(stream.findFilesNearestPackageIterator({5, 0}),
              (Places{{&early, std::next(early.packages.begin())},
                      {&justBefore, justBefore.packages.begin()}}));
    EXPECT_EQ(stream.findFilesNearestPackageIterator({3, 0}),
              (Places{{&early, early.packages.begin()}}));
    EXPECT_TRUE(stream.findFilesNearestPackageIterator({1, 0}).empty());
    EXPECT_EQ(stream.findFilesNearestPackageIterator({kMax, kMax}).size(), 4U);
}

TYPED_TEST(NearestPackages, AreInTheOrderOfTheirFilesAddresses) {
    TypeParam const stream;
    Places expected;
    for (std::uint32_t i = 0; i < 100; ++i) {
        PackageFile const& file =
            fill(stream, {{100 - i, 0}, {100, 0}, {300, i}}, "file " + std::to_string(i));
        expected.emplace(&file, std::next(file.packages.begin()));
    }
    Places const found = stream.findFilesNearestPackageIterator({300, 0});
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(std::is_sorted(found.begin(), found.end(), [](auto const& a, auto const& b) {
        return std::less<PackageFile const*>()(a.first, b.first);
    }));
}

TYPED_TEST(NearestPackages, ChangeNothing) {
    TypeParam const stream;
    PackageFile const& file = fill(stream, {{3, 0}, {1, 0}, {2, 0}}, "a");
    auto const packages = file.packages;
    static_cast<void>(stream.findFilesNearestPackageIterator({2, 0}));
    EXPECT_EQ(file.packages, packages);
    EXPECT_EQ(stream.files.size(), 1U);
    EXPECT_EQ(stream.packetCount, 0U);
}

}  // namespace
}  // namespace TalTest::NearestPackageTest
