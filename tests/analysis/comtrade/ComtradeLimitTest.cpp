// What keeps a record from being written.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/comtrade/ComtradeLimit.hpp>
#include <chrono>
#include <cstdint>
#include <limits>
#include <vector>

#include "analysis/comtrade/EncodedComtrade.hpp"

namespace TalTest::ComtradeLimitTest {
namespace {

using namespace TalIec61850Analysis;

constexpr ComtradeFormat kBinary{ComtradeEdition::of2013, ComtradeData::binary};
constexpr ComtradeFormat kText{ComtradeEdition::of2013, ComtradeData::ascii};

TEST(ComtradeLimits, AreKeptByAnOrdinaryRecord) {
    for (ComtradeFormat const format : everyFormat()) {
        EXPECT_EQ(brokenLimit(recordOf(format, 8, 3, 10)), std::nullopt);
    }
}

TEST(ComtradeLimits, AskForAChannel) {
    EXPECT_EQ(brokenLimit(recordOf(kBinary, 0, 0, 1)), ComtradeLimit::noChannel);
    EXPECT_EQ(brokenLimit(recordOf(kBinary, 0, 1, 1)), std::nullopt);
}

TEST(ComtradeLimits, AreAMillionChannels) {
    ComtradeRecord record = recordOf(kBinary, 1, 0, 1);
    record.digitals.resize(999'998);
    EXPECT_EQ(brokenLimit(record), std::nullopt);
    record.digitals.emplace_back();
    EXPECT_EQ(brokenLimit(record), ComtradeLimit::tooManyChannels);
}

TEST(ComtradeLimits, AskForARow) {
    EXPECT_EQ(brokenLimit(recordOf(kBinary, 1, 0, 0)), ComtradeLimit::noRow);
}

TEST(ComtradeLimits, AreTheSampleNumbersOfTheData) {
    EXPECT_EQ(brokenLimit(recordOf(kBinary, 1, 0, 0xFFFFFFFF)), std::nullopt);
    EXPECT_EQ(brokenLimit(recordOf(kBinary, 1, 0, 0x100000000)), ComtradeLimit::tooManyRows);
    EXPECT_EQ(brokenLimit(recordOf(kText, 1, 0, 9'999'999'999)), std::nullopt);
    EXPECT_EQ(brokenLimit(recordOf(kText, 1, 0, 10'000'000'000)), ComtradeLimit::tooManyRows);
}

TEST(ComtradeLimits, AskForARate) {
    ComtradeRecord record = recordOf(kBinary, 1, 0, 1);
    record.rate = {.samples = 0, .seconds = 1};
    EXPECT_EQ(brokenLimit(record), ComtradeLimit::noRate);
    record.rate = {.samples = 1, .seconds = 0};
    EXPECT_EQ(brokenLimit(record), ComtradeLimit::noRate);
}

TEST(ComtradeLimits, AreTheTimesThatThereAre) {
    ComtradeRecord record = recordOf(kBinary, 1, 0, 2);
    record.rate = {.samples = 1, .seconds = 1};
    record.start = CaptureTime::max() - std::chrono::seconds(1);
    EXPECT_EQ(brokenLimit(record), std::nullopt);
    record.start += std::chrono::nanoseconds(1);
    EXPECT_EQ(brokenLimit(record), ComtradeLimit::tooLong);
    record.start = CaptureTime::min();
    EXPECT_EQ(brokenLimit(record), std::nullopt);
    record.rows = 0xFFFFFFFF;
    record.rate = {.samples = 1, .seconds = 0xFFFFFFFF};
    EXPECT_EQ(brokenLimit(record), ComtradeLimit::tooLong);
}

TEST(ComtradeLimits, AskForNumbers) {
    double const infinite = std::numeric_limits<double>::infinity();
    double const none = std::numeric_limits<double>::quiet_NaN();
    for (double const number : {infinite, -infinite, none}) {
        std::vector<ComtradeRecord> records(7, recordOf(kBinary, 2, 0, 1));
        records[0].analogs[1].scale = number;
        records[1].analogs[1].offset = number;
        records[2].analogs[1].primary = number;
        records[3].analogs[1].secondary = number;
        records[4].analogs[1].step.size = number;
        records[5].analogs[1].step.middle = number;
        records[6].lineFrequency = number;
        for (ComtradeRecord const& record : records) {
            EXPECT_EQ(brokenLimit(record), ComtradeLimit::noNumber);
        }
    }
}

TEST(ComtradeLimits, AskForNumbersAlsoOfProducts) {
    ComtradeRecord record = recordOf(kBinary, 1, 0, 1);
    record.analogs[0].scale = 1e200;
    record.analogs[0].step.size = 1e200;
    EXPECT_EQ(brokenLimit(record), ComtradeLimit::noNumber);
    record.analogs[0].step = {.size = 1, .middle = 1e200};
    EXPECT_EQ(brokenLimit(record), ComtradeLimit::noNumber);
}

TEST(ComtradeLimits, AskForAStepAboveZero) {
    for (double const size : {0.0, -1.0}) {
        ComtradeRecord record = recordOf(kBinary, 1, 0, 1);
        record.analogs[0].step.size = size;
        EXPECT_EQ(brokenLimit(record), ComtradeLimit::noNumber);
    }
}

TEST(ComtradeLimits, KeepBinary32OutOfTheEditionOf1999) {
    EXPECT_EQ(brokenLimit(recordOf({ComtradeEdition::of1999, ComtradeData::binary32}, 1, 0, 1)),
              ComtradeLimit::dataOfOtherEdition);
}

TEST(ComtradeLimits, AreTheTimeQualityCodes) {
    ComtradeRecord record = recordOf(kBinary, 1, 0, 1);
    std::vector<int> refused;
    for (int code = 0; code <= 255; ++code) {
        record.timeQuality = static_cast<std::uint8_t>(code);
        if (brokenLimit(record) == ComtradeLimit::timeQuality) {
            refused.push_back(code);
        }
    }
    EXPECT_EQ(refused.size(), 256U - 13U);
    EXPECT_EQ(refused[0], 12);
    EXPECT_EQ(refused[3], 16);
}

}  // namespace
}  // namespace TalTest::ComtradeLimitTest
