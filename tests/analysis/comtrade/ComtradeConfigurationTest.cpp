// The text of configuration files, line by line.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "analysis/comtrade/EncodedComtrade.hpp"
#include "support/ComtradeReader.hpp"
#include "support/DecimalComma.hpp"

namespace TalTest::ComtradeConfigurationTest {
namespace {

using namespace TalIec61850Analysis;

constexpr ComtradeFormat kAscii1999{ComtradeEdition::of1999, ComtradeData::ascii};
constexpr ComtradeFormat kBinary1999{ComtradeEdition::of1999, ComtradeData::binary};
constexpr ComtradeFormat kAscii2013{ComtradeEdition::of2013, ComtradeData::ascii};
constexpr ComtradeFormat kBinary32{ComtradeEdition::of2013, ComtradeData::binary32};

/// Two analog channels and a digital one, eight rows.
ComtradeRecord bayRecord(ComtradeFormat format) {
    ComtradeRecord record = recordOf(format, 2, 1, 8);
    record.station = "North";
    record.device = "MU01";
    record.analogs[0] = {.id = "Ia",
                         .phase = "A",
                         .component = "Line 1",
                         .unit = "A",
                         .scale = 0.001,
                         .offset = 0,
                         .step = {},
                         .primary = 1,
                         .secondary = 1,
                         .side = ComtradeSide::primary};
    record.analogs[1] = {.id = "Ua",
                         .phase = "A",
                         .component = "",
                         .unit = "V",
                         .scale = 0.01,
                         .offset = -2.5,
                         .step = {.size = 20, .middle = 300},
                         .primary = 110000,
                         .secondary = 100,
                         .side = ComtradeSide::secondary};
    record.digitals[0] = {.id = "lost", .phase = "", .component = "", .normal = true};
    record.lineFrequency = 50;
    record.start += std::chrono::microseconds(17);
    record.trigger = record.start + std::chrono::milliseconds(1);
    record.timeQuality = 11;
    record.leapSecond = ComtradeLeapSecond::added;
    return record;
}

TEST(ComtradeConfigurations, OfTheEditionOf2013HaveTheseLines) {
    EXPECT_EQ(comtradeConfiguration(bayRecord(kBinary32)),
              "North,MU01,2013\r\n"
              "3,2A,1D\r\n"
              "1,Ia,A,Line 1,A,0.001,0,0,-2147483647,2147483647,1,1,P\r\n"
              "2,Ua,A,,V,0.2,0.5,0,-2147483647,2147483647,110000,100,S\r\n"
              "1,lost,,,1\r\n"
              "50\r\n"
              "1\r\n"
              "4000,8\r\n"
              "20/03/2024,10:00:00.000017\r\n"
              "20/03/2024,10:00:00.001017\r\n"
              "BINARY32\r\n"
              "1\r\n"
              "0,0\r\n"
              "B,1\r\n");
}

TEST(ComtradeConfigurations, OfTheEditionOf1999HaveNoLinesOfTimeCodes) {
    EXPECT_EQ(comtradeConfiguration(bayRecord(kBinary1999)),
              "North,MU01,1999\r\n"
              "3,2A,1D\r\n"
              "1,Ia,A,Line 1,A,0.001,0,0,-32767,32767,1,1,P\r\n"
              "2,Ua,A,,V,0.2,0.5,0,-32767,32767,110000,100,S\r\n"
              "1,lost,,,1\r\n"
              "50\r\n"
              "1\r\n"
              "4000,8\r\n"
              "20/03/2024,10:00:00.000017\r\n"
              "20/03/2024,10:00:00.001017\r\n"
              "BINARY\r\n"
              "1\r\n");
}

TEST(ComtradeConfigurations, OfEveryFormatAreReadBack) {
    for (ComtradeFormat const format : everyFormat()) {
        ReadComtrade const read =
            ComtradeReader::readConfiguration(comtradeConfiguration(bayRecord(format)));
        EXPECT_EQ(read.analogs.at(1).b, 0.5);
        EXPECT_EQ(read.start, 1'710'928'800'000'017'000);
        EXPECT_EQ(read.lastRow, 8U);
    }
}

std::string lineOf(ComtradeRecord const& record, std::size_t number) {
    std::string const text = comtradeConfiguration(record);
    std::size_t begin = 0;
    for (std::size_t line = 1; line < number; ++line) {
        begin = text.find("\r\n", begin) + 2;
    }
    return text.substr(begin, text.find("\r\n", begin) - begin);
}

TEST(ComtradeConfigurations, NameTheRangeOfAscii) {
    EXPECT_EQ(lineOf(recordOf(kAscii1999, 1, 0, 1), 3), "1,a1,,,raw,1,0,0,-99999,99998,1,1,P");
    EXPECT_EQ(lineOf(recordOf(kAscii2013, 1, 0, 1), 3),
              "1,a1,,,raw,1,0,0,-999999999999,99998,1,1,P");
}

TEST(ComtradeConfigurations, LeaveAnUnknownLineFrequencyEmpty) {
    EXPECT_EQ(lineOf(recordOf(kBinary32, 1, 0, 1), 4), "");
}

TEST(ComtradeConfigurations, TellRatesThatAreFractions) {
    ComtradeRecord record = recordOf(kBinary32, 1, 0, 5);
    record.rate = {.samples = 1, .seconds = 4};
    EXPECT_EQ(lineOf(record, 6), "0.25,5");
    record.rate = {.samples = 1, .seconds = 3};
    EXPECT_EQ(lineOf(record, 6), "0.3333333333333333,5");
    record.rate = {.samples = 14'400, .seconds = 1};
    EXPECT_EQ(lineOf(record, 6), "14400,5");
    record.rate = {.samples = 1'000'000, .seconds = 1};
    EXPECT_EQ(lineOf(record, 6), "1000000,5");
}

TEST(ComtradeConfigurations, HaveNineDecimalsWhereTheStartIsNoWholeMicrosecond) {
    ComtradeRecord record = recordOf(kBinary32, 1, 0, 1);
    record.start += std::chrono::nanoseconds(1001);
    EXPECT_EQ(lineOf(record, 7), "20/03/2024,10:00:00.000001001");
    EXPECT_EQ(lineOf(record, 8), "20/03/2024,10:00:00.000000000");
    record.start += std::chrono::nanoseconds(99);
    EXPECT_EQ(lineOf(record, 7), "20/03/2024,10:00:00.000001100");
}

TEST(ComtradeConfigurations, CutTheTriggerToTheDecimalsOfTheStart) {
    ComtradeRecord record = recordOf(kBinary32, 1, 0, 1);
    record.trigger += std::chrono::nanoseconds(1999);
    EXPECT_EQ(lineOf(record, 7), "20/03/2024,10:00:00.000000");
    EXPECT_EQ(lineOf(record, 8), "20/03/2024,10:00:00.000001");
}

TEST(ComtradeConfigurations, OfTheEditionOf1999CutTimesToMicroseconds) {
    ComtradeRecord record = recordOf(kBinary1999, 1, 0, 1);
    record.start += std::chrono::nanoseconds(1999);
    EXPECT_EQ(lineOf(record, 7), "20/03/2024,10:00:00.000001");
}

TEST(ComtradeConfigurations, TellTimesBefore1970) {
    ComtradeRecord record = recordOf(kBinary32, 1, 0, 1);
    record.start = captureTimeOf(-1);
    record.trigger = CaptureTime::min();
    EXPECT_EQ(lineOf(record, 7), "31/12/1969,23:59:59.999999999");
    EXPECT_EQ(lineOf(record, 8), "21/09/1677,00:12:43.145224192");
}

TEST(ComtradeConfigurations, KeepNumbersWhateverTheyAre) {
    for (double const number : {0.1 + 0.2, 1e300, -5e-324, 123456789012345678901234.0, -0.0, 1e6}) {
        ComtradeRecord record = recordOf(kBinary32, 1, 0, 1);
        record.analogs[0].primary = number;
        EXPECT_EQ(
            ComtradeReader::readConfiguration(comtradeConfiguration(record)).analogs[0].primary,
            number);
    }
}

TEST(ComtradeConfigurations, KeepTheDecimalPointWhateverTheLocale) {
    std::string const plain = comtradeConfiguration(bayRecord(kBinary32));
    GlobalDecimalComma const comma;
    EXPECT_EQ(comtradeConfiguration(bayRecord(kBinary32)), plain);
}

std::string idWritten(std::string const& id) {
    ComtradeRecord record = recordOf(kAscii1999, 1, 0, 1);
    record.analogs[0].id = id;
    return ComtradeReader::readConfiguration(comtradeConfiguration(record)).analogs[0].id;
}

TEST(ComtradeTexts, HaveNoCommasAndControlCharacters) {
    EXPECT_EQ(idWritten("a,b\r\nc\td"), "a_b__c_d");
    EXPECT_EQ(idWritten(std::string("a\0b\x7F", 4)), "a_b_");
}

TEST(ComtradeTexts, HaveOneCharacterForEachThatIsNotAscii) {
    EXPECT_EQ(idWritten("K\xC3\xBChl \xE2\x82\xAC\xC3\xA9"), "K_hl __");
    // What is no UTF-8: an octet that only continues a character is one by itself.
    EXPECT_EQ(idWritten("\x80z\xFF"), "_z_");
}

TEST(ComtradeTexts, HaveSignsOfUnitsInAscii) {
    EXPECT_EQ(idWritten("\xC2\xB5V \xCE\xBCV"), "uV uV");
    EXPECT_EQ(idWritten("\xC2\xB0\x43"), "degC");
    EXPECT_EQ(idWritten("m\xC2\xB2 m\xC2\xB3"), "m2 m3");
    EXPECT_EQ(idWritten(std::string(62, 'a') + "\xC2\xB0"), std::string(62, 'a')) << "no part";
}

TEST(ComtradeTexts, HaveNoBlanksAtTheirEnds) { EXPECT_EQ(idWritten("  a b  "), "a b"); }

TEST(ComtradeTexts, AreCutAtTheirLimits) {
    std::string const longText(1000, 'x');
    ComtradeRecord record = recordOf(kAscii1999, 1, 1, 1);
    record.station = longText;
    record.device = longText;
    record.analogs[0].id = longText;
    record.analogs[0].phase = longText;
    record.analogs[0].component = longText;
    record.analogs[0].unit = longText;
    record.digitals[0].id = longText;
    record.digitals[0].phase = longText;
    record.digitals[0].component = longText;
    ReadComtrade const read = ComtradeReader::readConfiguration(comtradeConfiguration(record));
    std::vector<std::size_t> const sizes{read.station.size(),
                                         read.device.size(),
                                         read.analogs[0].id.size(),
                                         read.analogs[0].phase.size(),
                                         read.analogs[0].component.size(),
                                         read.analogs[0].unit.size(),
                                         read.digitals[0].id.size(),
                                         read.digitals[0].phase.size(),
                                         read.digitals[0].component.size()};
    EXPECT_EQ(sizes, (std::vector<std::size_t>{64, 64, 64, 2, 64, 32, 64, 2, 64}));
}

TEST(ComtradeTexts, OfUnitsAreNeverEmpty) {
    for (std::string const unit : {"", "   "}) {
        ComtradeRecord record = recordOf(kBinary32, 1, 0, 1);
        record.analogs[0].unit = unit;
        EXPECT_EQ(ComtradeReader::readConfiguration(comtradeConfiguration(record)).analogs[0].unit,
                  "raw");
    }
}

TEST(ComtradeConfigurations, AreNotMadeOfRecordsThatCannotBeWritten) {
    EXPECT_THROW(static_cast<void>(comtradeConfiguration(recordOf(kBinary32, 1, 0, 0))),
                 std::invalid_argument);
}

}  // namespace
}  // namespace TalTest::ComtradeConfigurationTest
