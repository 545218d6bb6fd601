#include <gtest/gtest.h>

#include <limits>

#include "tools/library/IndexedPackage.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools::CaptureTimeTest {
namespace {

using TalIec61850Parser::Timest;

std::string utc(std::uint32_t seconds, std::uint32_t nanoseconds) {
    return toUtcText(toCaptureTime(Timest{seconds, nanoseconds}));
}

TEST(CaptureTime, IsWrittenInUtcWithNineDecimals) {
    EXPECT_EQ(utc(1700000000, 123456789), "2023-11-14T22:13:20.123456789Z");
}

TEST(CaptureTime, KeepsLeadingZerosOfEveryPart) {
    EXPECT_EQ(utc(981173106, 7), "2001-02-03T04:05:06.000000007Z");
}

TEST(CaptureTime, BeginsIn1970) { EXPECT_EQ(utc(0, 0), "1970-01-01T00:00:00.000000000Z"); }

TEST(CaptureTime, KnowsLeapDays) {
    EXPECT_EQ(utc(951782399, 0), "2000-02-28T23:59:59.000000000Z");
    EXPECT_EQ(utc(951782400, 0), "2000-02-29T00:00:00.000000000Z");
    EXPECT_EQ(utc(951868800, 0), "2000-03-01T00:00:00.000000000Z");
    EXPECT_EQ(utc(4107542400, 0), "2100-03-01T00:00:00.000000000Z");  // 2100 has none
}

TEST(CaptureTime, CarriesNanosecondsOfASecondAndMoreOver) {
    EXPECT_EQ(utc(1700000000, 1'000'000'000), "2023-11-14T22:13:21.000000000Z");
    EXPECT_EQ(utc(1699999999, 1'500'000'000), "2023-11-14T22:13:20.500000000Z");
}

TEST(CaptureTime, ReachesTheLastTimeThatTheIndexHolds) {
    constexpr auto most = std::numeric_limits<std::uint32_t>::max();
    EXPECT_EQ(utc(most, 999'999'999), "2106-02-07T06:28:15.999999999Z");
    EXPECT_EQ(utc(most, most), "2106-02-07T06:28:19.294967295Z");
}

TEST(CaptureTime, CountsNanosecondsSince1970) {
    EXPECT_EQ(toCaptureTime({1700000000, 123456789}).time_since_epoch().count(),
              1700000000123456789);
}

}  // namespace
}  // namespace TalIec61850Tools::CaptureTimeTest
