// The stamps of rows, up to where 32 bits, or the characters of a field, hold no more of them.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "analysis/comtrade/EncodedComtrade.hpp"

namespace TalTest::ComtradeStampsTest {
namespace {

using namespace TalIec61850Analysis;
using Stamps = std::vector<std::optional<std::uint64_t>>;

constexpr ComtradeFormat kText1999{ComtradeEdition::of1999, ComtradeData::ascii};
constexpr ComtradeFormat kBinary1999{ComtradeEdition::of1999, ComtradeData::binary};
constexpr ComtradeFormat kText2013{ComtradeEdition::of2013, ComtradeData::ascii};
constexpr ComtradeFormat kBinary2013{ComtradeEdition::of2013, ComtradeData::binary};

/// Of a record of one digital channel.
ReadComtrade digitalsReadBack(ComtradeFormat format, std::uint64_t rows, ComtradeRate rate,
                              std::chrono::nanoseconds startsAfter = {}) {
    ComtradeRecord record = recordOf(format, 0, 1, rows);
    record.rate = rate;
    record.start += startsAfter;
    std::vector<std::uint8_t> const states(rows, 0);
    return readBack(record, {.analogs = {}, .digitals = {states}});
}

Stamps stampsOf(ReadComtrade const& record) {
    Stamps stamps;
    for (ReadComtradeRow const& row : record.rows) {
        stamps.push_back(row.stamp);
    }
    return stamps;
}

constexpr std::chrono::nanoseconds kOneNanosecond(1);

TEST(ComtradeStamps, CountMicrosecondsFromTheFirstRow) {
    for (ComtradeFormat const format : everyFormat()) {
        ReadComtrade const read = digitalsReadBack(format, 4, {.samples = 4000, .seconds = 1});
        EXPECT_EQ(stampsOf(read), (Stamps{0, 250, 500, 750}));
        EXPECT_FALSE(read.isInNanoseconds);
    }
}

TEST(ComtradeStamps, CountNanosecondsWhereTheStartDoes) {
    ReadComtrade const read =
        digitalsReadBack(kBinary2013, 4, {.samples = 4000, .seconds = 1}, kOneNanosecond);
    EXPECT_EQ(stampsOf(read), (Stamps{0, 250'000, 500'000, 750'000}));
    EXPECT_TRUE(read.isInNanoseconds);
}

TEST(ComtradeStamps, OfTheEditionOf1999CountMicrosecondsInAnyCase) {
    ReadComtrade const read =
        digitalsReadBack(kBinary1999, 2, {.samples = 4000, .seconds = 1}, kOneNanosecond);
    EXPECT_EQ(stampsOf(read), (Stamps{0, 250}));
    EXPECT_FALSE(read.isInNanoseconds);
}

TEST(ComtradeStamps, AreRoundedEachByItself) {
    ReadComtrade const read = digitalsReadBack(kBinary2013, 8, {.samples = 14'400, .seconds = 1});
    // Of 69.44 microseconds.
    EXPECT_EQ(stampsOf(read), (Stamps{0, 69, 139, 208, 278, 347, 417, 486}));
}

TEST(ComtradeStamps, AreThereUpToTheLastThat32BitsHold) {
    // The value with all bits set is the mark of a missing stamp.
    ComtradeRate const rate{.samples = 1'000'000, .seconds = 0xFFFFFFFE};
    EXPECT_EQ(stampsOf(digitalsReadBack(kBinary2013, 2, rate)), (Stamps{0, 0xFFFFFFFE}));
}

TEST(ComtradeStamps, AreAllMissingWhere32BitsDoNotHoldTheLastOne) {
    ComtradeRate const rate{.samples = 1'000'000, .seconds = 0xFFFFFFFF};
    for (ComtradeFormat const format : everyFormat()) {
        if (format.data != ComtradeData::ascii) {
            Stamps const missing{std::nullopt, std::nullopt};
            EXPECT_EQ(stampsOf(digitalsReadBack(format, 2, rate)), missing);
        }
    }
}

TEST(ComtradeStamps, AreAllMissingWhereTheLastOneIsTheMarkItself) {
    ComtradeRate const rate{.samples = 2'000'000, .seconds = 0xFFFFFFFE};
    EXPECT_EQ(stampsOf(digitalsReadBack(kBinary2013, 3, rate)),
              (Stamps{0, 0x7FFFFFFF, 0xFFFFFFFE}));
    ComtradeRate const later{.samples = 2'000'000, .seconds = 0xFFFFFFFF};
    EXPECT_EQ(stampsOf(digitalsReadBack(kBinary2013, 2, later)), (Stamps{0, 0x80000000}));
    EXPECT_EQ(stampsOf(digitalsReadBack(kBinary2013, 3, later)),
              (Stamps{std::nullopt, std::nullopt, std::nullopt}));
}

TEST(ComtradeStamps, InTextAreNumbersLongAfter32Bits) {
    ComtradeRate const rate{.samples = 1, .seconds = 9999};
    for (ComtradeFormat const format : {kText1999, kText2013}) {
        ReadComtrade const read = digitalsReadBack(format, 2, rate);
        EXPECT_EQ(stampsOf(read), (Stamps{0, 9'999'000'000}));
        EXPECT_EQ(read.multiplier, 1);
    }
}

TEST(ComtradeStamps, InTextAreMultipliedWhereTheirFieldIsTooShort) {
    ComtradeRate const rate{.samples = 1, .seconds = 10'000};
    ReadComtrade const read1999 = digitalsReadBack(kText1999, 2, rate);
    EXPECT_EQ(stampsOf(read1999), (Stamps{0, 1'000'000'000}));
    EXPECT_EQ(read1999.multiplier, 10);
    ReadComtrade const read2013 = digitalsReadBack(kText2013, 2, rate);
    EXPECT_EQ(stampsOf(read2013), (Stamps{0, 10'000'000'000}));
    EXPECT_EQ(read2013.multiplier, 1);
    ReadComtrade const inNanoseconds = digitalsReadBack(kText2013, 2, rate, kOneNanosecond);
    EXPECT_EQ(stampsOf(inNanoseconds), (Stamps{0, 1'000'000'000'000}));
    EXPECT_EQ(inNanoseconds.multiplier, 10);
}

TEST(ComtradeStamps, InTextAreMultipliedForTheLongestRecordToo) {
    ComtradeRecord record = recordOf(kText1999, 0, 1, 3);
    record.start = CaptureTime(std::chrono::days(-100'000));
    record.rate = {.samples = 1, .seconds = 0xFFFFFFFF};
    std::vector<std::uint8_t> const states(3, 1);
    ReadComtrade const read = readBack(record, {.analogs = {}, .digitals = {states}});
    EXPECT_EQ(stampsOf(read), (Stamps{0, 4'294'967'295, 8'589'934'590}));
    EXPECT_EQ(read.multiplier, 1'000'000);
}

}  // namespace
}  // namespace TalTest::ComtradeStampsTest
