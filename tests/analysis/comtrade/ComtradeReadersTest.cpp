// Layouts that programs are known to fail on are not produced.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "analysis/comtrade/EncodedComtrade.hpp"
#include "support/Bytes.hpp"
#include "support/ComtradeReader.hpp"

namespace TalTest::ComtradeReadersTest {
namespace {

using namespace TalIec61850Analysis;

/// A record in which a row and more is missing, in every format.
std::vector<ComtradeRecord> recordsWithALoss() {
    std::vector<ComtradeRecord> records;
    for (ComtradeFormat const format : everyFormat()) {
        records.push_back(recordOf(format, 2, 1, 4));
    }
    return records;
}

struct LossyData {
    std::string text;
    ReadComtrade read;
};

LossyData written(ComtradeRecord const& record) {
    std::vector<std::int32_t> const samples{1, 2, 3, 4};
    std::vector<std::uint8_t> const missing{0, 1, 1, 0};
    std::vector<std::uint8_t> const states{0, 1, 1, 0};
    ComtradeAnalogColumn const column{.samples = std::span<std::int32_t const>(samples),
                                      .missing = missing};
    ComtradeColumns const columns{.analogs = {column, column}, .digitals = {states}};
    Bytes const octets = encoded(record, columns).octets;
    return {.text = std::string(octets.begin(), octets.end()), .read = readBack(record, columns)};
}

TEST(ComtradeLayouts, LeaveNoRowOut) {
    for (ComtradeRecord const& record : recordsWithALoss()) {
        ReadComtrade const read = written(record).read;
        ASSERT_EQ(read.rows.size(), 4U);
        EXPECT_EQ(read.lastRow, 4U);
        EXPECT_EQ(read.rows[1].number, 2U);
        EXPECT_EQ(read.rows[1].analogs[0], std::nullopt);
        EXPECT_EQ(read.rows[3].stamp, 750U);
    }
}

TEST(ComtradeLayouts, HaveOneRateAlways) {
    for (ComtradeRecord record : recordsWithALoss()) {
        record.rate = {.samples = 1, .seconds = 7};
        EXPECT_NE(comtradeConfiguration(record).find("\r\n1\r\n0.14285714285714285,4\r\n"),
                  std::string::npos);
    }
}

TEST(ComtradeLayouts, HaveNoEmptyFieldInText) {
    for (ComtradeRecord record : recordsWithALoss()) {
        if (record.format.data != ComtradeData::ascii) {
            continue;
        }
        // Stamps that 32 bits do not hold.
        record.rate = {.samples = 1, .seconds = 3000};
        std::string const text = written(record).text;
        EXPECT_EQ(text.find(",,"), std::string::npos) << text;
        EXPECT_EQ(text.find(",\r"), std::string::npos) << text;
        EXPECT_NE(text.find("2,3000000000,99999,99999,1\r\n"), std::string::npos) << text;
    }
}

TEST(ComtradeLayouts, HaveNoSampleThatReadsAsMissingInText) {
    // 99999 is missing for some programs, whatever the edition.
    for (ComtradeRecord record : recordsWithALoss()) {
        record.analogs[0].step = stepForIntegers(record.format, 1, 99'999);
        record.analogs[1].step = record.analogs[0].step;
        std::vector<std::int32_t> const samples{1, 99'998, 99'999, 1};
        ComtradeAnalogColumn const column{.samples = std::span<std::int32_t const>(samples),
                                          .missing = {}};
        std::vector<std::uint8_t> const states(4);
        ReadComtrade const read =
            readBack(record, {.analogs = {column, column}, .digitals = {states}});
        for (std::size_t row = 0; row < samples.size(); ++row) {
            ASSERT_TRUE(read.value(row, 0).has_value());
            EXPECT_NEAR(*read.value(row, 0), samples[row], record.analogs[0].step.size / 2);
        }
    }
}

TEST(ComtradeLayouts, HaveDecimalsInEveryTime) {
    for (ComtradeRecord const& record : recordsWithALoss()) {
        EXPECT_NE(comtradeConfiguration(record).find(",10:00:00.000000\r\n"), std::string::npos);
    }
}

TEST(ComtradeLayouts, CountInNanosecondsOnlyWhereTheStartDoes) {
    for (ComtradeRecord record : recordsWithALoss()) {
        record.trigger += std::chrono::nanoseconds(1);
        EXPECT_FALSE(written(record).read.isInNanoseconds);
    }
}

}  // namespace
}  // namespace TalTest::ComtradeReadersTest
