#include <gtest/gtest.h>

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <limits>

namespace TalIec61850Analysis::CaptureTimeTest {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr auto kMost = std::numeric_limits<std::uint32_t>::max();

TEST(CaptureTime, CountsNanosecondsSince1970) {
    EXPECT_EQ(makeCaptureTime(0, 0), CaptureTime());
    EXPECT_EQ(makeCaptureTime(1700000000, 123456789),
              CaptureTime(nanoseconds(1700000000123456789)));
}

TEST(CaptureTime, CarriesNanosecondsOfASecondAndMoreOver) {
    EXPECT_EQ(makeCaptureTime(5, 1'000'000'000), CaptureTime(seconds(6)));
    EXPECT_EQ(makeCaptureTime(5, kMost), CaptureTime(seconds(9) + nanoseconds(294'967'295)));
}

TEST(CaptureTime, HoldsTheLargestNumbersThatACaptureCanGive) {
    EXPECT_EQ(nanosecondsSince1970(makeCaptureTime(kMost, kMost)), 4294967299294967295U);
}

TEST(CaptureTime, GivesBackItsNanoseconds) {
    EXPECT_EQ(nanosecondsSince1970(makeCaptureTime(0, 0)), 0U);
    EXPECT_EQ(nanosecondsSince1970(makeCaptureTime(1700000000, 7)), 1700000000000000007U);
}

TEST(CaptureTime, IsMadeOfAnyNanosecondsAndGivesThemBack) {
    for (std::int64_t const time :
         {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1}, std::int64_t{0},
          std::int64_t{1'700'000'000'000'000'007}, std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(nanosecondsOf(captureTimeOf(time)), time);
    }
    EXPECT_EQ(captureTimeOf(6'000'000'000), CaptureTime(seconds(6)));
}

TEST(CaptureTime, HasATimeAfterItUnlessItIsTheLast) {
    constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(afterTime(0), 1);
    EXPECT_EQ(afterTime(-1), 0);
    EXPECT_EQ(afterTime(kLast - 1), kLast);
    EXPECT_EQ(afterTime(kLast), kLast);
}

}  // namespace
}  // namespace TalIec61850Analysis::CaptureTimeTest
