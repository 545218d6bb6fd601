#include <gtest/gtest.h>

#include <TalIec61850Analysis/packet/BinaryTime.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstdint>

#include "support/Bytes.hpp"
#include "support/Data.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Analysis::TimesTest {
namespace {

using namespace TalIec61850Tools;
using TalTest::utcTime;

std::optional<BinaryTime> readBinaryTime(OctetString const& octets) {
    return TalIec61850Analysis::readBinaryTime(octets);
}

UtcTime timeOf(std::uint32_t seconds, std::uint32_t fraction, std::uint8_t quality = 0) {
    return readUtcTime(utcTime(seconds, fraction, quality)).value();
}

TEST(UtcTimes, AreSecondsAndA24BitFraction) {
    UtcTime const time = timeOf(1'700'000'000, 0x800001, 0x8A);
    EXPECT_EQ(time.seconds, 1'700'000'000U);
    EXPECT_EQ(time.fraction, 0x800001U);
    EXPECT_EQ(time.quality, 0x8A);
    EXPECT_EQ(toIsoText(time), "2023-11-14T22:13:20.500000059Z");
}

TEST(UtcTimes, CutTheirNanoseconds) {
    EXPECT_EQ(timeOf(0, 0).nanoseconds(), 0U);
    EXPECT_EQ(timeOf(0, 1).nanoseconds(), 59U);  // 59.604...
    EXPECT_EQ(timeOf(0, 0x400000).nanoseconds(), 250'000'000U);
    EXPECT_EQ(timeOf(0, 0xFFFFFF).nanoseconds(), 999'999'940U);  // 999 999 940.395...
}

TEST(UtcTimes, ReachFrom1970To2106) {
    EXPECT_EQ(toIsoText(timeOf(0, 0)), "1970-01-01T00:00:00.000000000Z");
    EXPECT_EQ(toIsoText(timeOf(0xFFFFFFFF, 0xFFFFFF)), "2106-02-07T06:28:15.999999940Z");
}

TEST(UtcTimes, HaveEachPartOfTheirQuality) {
    UtcTime const all = timeOf(0, 0, 0xFF);
    EXPECT_TRUE(all.leapSecondsKnown() && all.clockFailure() && all.clockNotSynchronized());
    EXPECT_EQ(all.accuracy(), 31);
    UtcTime const known = timeOf(0, 0, 0x80);
    EXPECT_TRUE(known.leapSecondsKnown());
    EXPECT_FALSE(known.clockFailure() || known.clockNotSynchronized());
    EXPECT_EQ(known.accuracy(), 0);
    UtcTime const failed = timeOf(0, 0, 0x4A);
    EXPECT_TRUE(failed.clockFailure());
    EXPECT_FALSE(failed.leapSecondsKnown() || failed.clockNotSynchronized());
    EXPECT_EQ(failed.accuracy(), 10);
    UtcTime const adrift = timeOf(0, 0, 0x38);
    EXPECT_TRUE(adrift.clockNotSynchronized());
    EXPECT_FALSE(adrift.leapSecondsKnown() || adrift.clockFailure());
    EXPECT_EQ(adrift.accuracy(), 24);
}

TEST(UtcTimes, HaveEightOctets) {
    for (std::size_t size = 0; size < 20; ++size) {
        EXPECT_EQ(readUtcTime(OctetString(size)).has_value(), size == 8) << size;
    }
}

TEST(BinaryTimes, AreMillisecondsOfADayAndPerhapsADate) {
    EXPECT_EQ(readBinaryTime({0x05, 0x26, 0x5B, 0xFF}),
              (BinaryTime{.milliseconds = 86'399'999, .days = {}}));
    EXPECT_EQ(readBinaryTime({0x00, 0x00, 0x00, 0x01, 0x01, 0x02}),
              (BinaryTime{.milliseconds = 1, .days = 258}));
}

TEST(BinaryTimes, HaveFourOctetsOrSix) {
    for (std::size_t size = 0; size < 20; ++size) {
        EXPECT_EQ(readBinaryTime(OctetString(size)).has_value(), size == 4 || size == 6) << size;
    }
}

TEST(BinaryTimes, CountFrom1984) {
    EXPECT_EQ(toIsoText(BinaryTime{.milliseconds = 0, .days = 0}), "1984-01-01T00:00:00.000Z");
    EXPECT_EQ(toIsoText(BinaryTime{.milliseconds = 3'723'004, .days = 60}),
              "1984-03-01T01:02:03.004Z");
    EXPECT_EQ(toIsoText(BinaryTime{.milliseconds = 86'399'999, .days = 65'535}),
              "2163-06-06T23:59:59.999Z");
    EXPECT_EQ(toIsoText(BinaryTime{.milliseconds = 86'399'999, .days = {}}), "23:59:59.999");
}

TEST(BinaryTimes, OfMoreThanADayAreCarriedOver) {
    BinaryTime const late{.milliseconds = 86'400'000, .days = 0};
    EXPECT_FALSE(late.isTimeOfDay());
    EXPECT_TRUE((BinaryTime{.milliseconds = 86'399'999, .days = {}}).isTimeOfDay());
    EXPECT_EQ(toIsoText(late), "1984-01-02T00:00:00.000Z");
    EXPECT_EQ(toIsoText(BinaryTime{.milliseconds = 90'000'000, .days = {}}), "25:00:00.000");
    EXPECT_EQ(toIsoText(BinaryTime{.milliseconds = 0xFFFFFFFF, .days = 0}),
              "1984-02-19T17:02:47.295Z");
}

}  // namespace
}  // namespace TalIec61850Analysis::TimesTest
