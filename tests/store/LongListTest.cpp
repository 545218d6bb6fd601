#include <gtest/gtest.h>

#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/PackageFile.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>

// Lists so long that the library guesses where a search will end, and looks there beforehand.
// Guesses are right, wrong, or not to be had; what is found is always what a plain binary search
// finds.

namespace TalTest::LongListTest {
namespace {

using namespace TalIec61850Parser;

constexpr std::uint32_t kPackets = 600'000;

using TimeOf = std::function<Timest(std::uint32_t number)>;

Timest evenly(std::uint32_t number) { return {1000 + number / 4000, number % 4000 * 250'000}; }
Timest inTwoBursts(std::uint32_t number) { return {number < kPackets / 2 ? 1000U : 2000U, number}; }
Timest atOnce(std::uint32_t /*number*/) { return {1000, 0}; }
Timest outOfOrder(std::uint32_t number) { return evenly(number * 7919 % kPackets); }

/// One file of that many packets.
struct LongList {
    explicit LongList(TimeOf const& timeOf) : file(*stream.addFile("long.pcap")) {
        for (std::uint32_t i = 0; i < kPackets; ++i) {
            Timest const time = timeOf(i);
            file.addPackage(time.seconds, time.nanoseconds, i);
        }
    }

    Goose const stream{};
    PackageFile const& file;
};

/// Inside, at and beyond the ends, between bursts.
constexpr std::array<Timest, 10> kTimes = {{{0, 0},
                                            {999, 999'999'999},
                                            {1000, 0},
                                            {1000, 1},
                                            {1000, 299'999},
                                            {1001, 250'000},
                                            {1077, 3},
                                            {1149, 999'750'000},
                                            {2000, 599'999},
                                            {0xFFFFFFFF, 0xFFFFFFFF}}};

void expectPlainSearch(LongList const& list, Timest const& from, Timest const& to) {
    auto const& packages = list.file.packages;
    auto const first = std::partition_point(packages.begin(), packages.end(),
                                            [&](Package const& p) { return p.time < from; });
    auto const behind = std::partition_point(packages.begin(), packages.end(),
                                             [&](Package const& p) { return !(to < p.time); });
    auto const found = list.stream.getfilteredPackages(from, to).at(&list.file);
    auto const count = static_cast<std::size_t>(first < behind ? behind - first : 0);
    ASSERT_EQ(found.packages.size(), count);
    if (count != 0) {
        EXPECT_EQ(found.packages.front(), &*first);
        EXPECT_EQ(found.packages.back(), &*std::prev(behind));
    }
    EXPECT_EQ(found.previousPackage, first == packages.begin() ? nullptr : &*std::prev(first));
    EXPECT_EQ(found.nextPackage, behind == packages.end() ? nullptr : &*behind);
    EXPECT_EQ(list.stream.findFileNearestPackageIterator(&list.file, from),
              first == packages.begin() ? packages.end() : std::prev(first));
}

void expectPlainSearches(TimeOf const& timeOf) {
    LongList const list(timeOf);
    for (Timest const& from : kTimes)
        for (Timest const& to : kTimes) expectPlainSearch(list, from, to);
}

TEST(LongList, OfAnEvenPaceIsSearchedRightly) { expectPlainSearches(evenly); }

TEST(LongList, OfTwoBurstsIsSearchedRightly) { expectPlainSearches(inTwoBursts); }

TEST(LongList, OfOneTimeIsSearchedRightly) { expectPlainSearches(atOnce); }

TEST(LongList, OutOfOrderIsSearchedAsByTheStandardLibrary) { expectPlainSearches(outOfOrder); }

}  // namespace
}  // namespace TalTest::LongListTest
