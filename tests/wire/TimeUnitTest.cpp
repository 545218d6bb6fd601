// Units of time of next-generation captures, against arithmetic in 128 bits.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/wire/TimeUnit.hpp>
#include <cstdint>
#include <limits>
#include <optional>

#include "index/RandomPicks.hpp"

namespace TalTest::TimeUnitTest {
namespace {

using TalIec61850Parser::wire::TimeUnit;
using TalTest::below;
using TalTest::oneIn;

__extension__ typedef __int128 Wide;  // NOLINT(modernize-use-using): a using cannot be marked

constexpr std::uint8_t kBinary = 0x80;

std::optional<std::int64_t> told(std::uint8_t resolution, std::int64_t offset,
                                 std::uint64_t units) {
    return TimeUnit(resolution, offset).nanoseconds(units);
}

/// The same by long division, digit by digit of the fraction.
std::optional<std::int64_t> plain(std::uint8_t resolution, std::int64_t offset,
                                  std::uint64_t units) {
    Wide unitsPerSecond = 1;
    for (int i = 0; i < (resolution & 0x7F); ++i) {
        unitsPerSecond *= resolution >= kBinary ? 2 : 10;
    }
    Wide nanoseconds = Wide{units} / unitsPerSecond + offset;
    Wide rest = Wide{units} % unitsPerSecond;
    for (int digit = 0; digit < 9; ++digit) {
        rest *= 10;
        nanoseconds = nanoseconds * 10 + rest / unitsPerSecond;
        rest %= unitsPerSecond;
    }
    if (nanoseconds < 0 || nanoseconds > std::numeric_limits<std::int64_t>::max()) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(nanoseconds);
}

TEST(TimeUnit, IsOneOfTenOrTwo) {
    EXPECT_EQ(told(6, 0, 1'700'000'000'123'456), 1'700'000'000'123'456'000);
    EXPECT_EQ(told(9, 0, 1'700'000'000'123'456'789), 1'700'000'000'123'456'789);
    EXPECT_EQ(told(0, 0, 1'700'000'000), 1'700'000'000'000'000'000);
    EXPECT_EQ(told(kBinary | 30, 0, (std::uint64_t{1'700'000'000} << 30U) + (1U << 29U)),
              1'700'000'000'500'000'000);
    EXPECT_EQ(told(kBinary, 0, 7), 7'000'000'000);
    EXPECT_EQ(TimeUnit().nanoseconds(5), 5000);
}

TEST(TimeUnit, IsCutToNanosecondsWhereItIsFiner) {
    EXPECT_EQ(told(12, 1'700'000'000, 123'456'789'999), 1'700'000'000'123'456'789);
    EXPECT_EQ(told(19, 1, 9'999'999'999), 1'000'000'000);
    EXPECT_EQ(told(19, 1, 10'000'000'000), 1'000'000'001);
    EXPECT_EQ(told(kBinary | 63, 5, std::uint64_t{1} << 62U), 5'500'000'000);
    EXPECT_EQ(told(kBinary | 63, 0, (std::uint64_t{1} << 63U) - 1), 999'999'999);
}

TEST(TimeUnit, TellsNoTimeThatDoesNotFit) {
    EXPECT_EQ(told(9, 0, std::numeric_limits<std::int64_t>::max()),
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(told(9, 0, std::uint64_t{1} << 63U), std::nullopt);
    EXPECT_EQ(told(6, 0, 9'223'372'036'854'775), 9'223'372'036'854'775'000);
    EXPECT_EQ(told(6, 0, 9'223'372'036'854'776), std::nullopt);
    EXPECT_EQ(told(0, 9'223'372'036, 0), 9'223'372'036'000'000'000);
    EXPECT_EQ(told(0, 9'223'372'036, 1), std::nullopt);
    EXPECT_EQ(told(0, 1, ~std::uint64_t{0}), std::nullopt);
    EXPECT_EQ(told(0, -1, 0), std::nullopt);
    EXPECT_EQ(told(0, -1, 1), 0);
    EXPECT_EQ(told(0, std::numeric_limits<std::int64_t>::min(), ~std::uint64_t{0}), std::nullopt);
}

TEST(TimeUnit, FinerThanCanBeCountedTellsNoTime) {
    for (std::uint8_t const resolution : TalTest::Bytes{20, 127, kBinary | 64, 255}) {
        EXPECT_FALSE(TimeUnit(resolution, 0).isUsable());
        EXPECT_EQ(told(resolution, 0, 0), std::nullopt);
    }
    EXPECT_TRUE(TimeUnit(19, 0).isUsable());
    EXPECT_TRUE(TimeUnit(kBinary | 63, 0).isUsable());
}

RC_GTEST_PROP(AnyTimeUnit, TellsWhatLongDivisionTells, ()) {
    auto const resolution = static_cast<std::uint8_t>(oneIn(2) ? kBinary + below(64) : below(20));
    std::uint64_t const any = *rc::gen::arbitrary<std::uint64_t>();
    std::uint64_t const units = any >> below(64);
    std::int64_t const wide = *rc::gen::arbitrary<std::int64_t>();
    std::int64_t const offset = oneIn(3) ? 0 : wide / (std::int64_t{1} << below(63));
    RC_ASSERT(told(resolution, offset, units) == plain(resolution, offset, units));
}

}  // namespace
}  // namespace TalTest::TimeUnitTest
