// The reader of COMTRADE: what it reads, and what it refuses.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/Bytes.hpp"
#include "support/ComtradeReader.hpp"

namespace TalTest::ComtradeReaderTest {
namespace {

constexpr std::size_t kStation = 0;
constexpr std::size_t kCounts = 1;
constexpr std::size_t kAnalog = 2;
constexpr std::size_t kDigital = 3;
constexpr std::size_t kFrequency = 4;
constexpr std::size_t kRates = 5;
constexpr std::size_t kRate = 6;
constexpr std::size_t kStart = 7;
constexpr std::size_t kTrigger = 8;
constexpr std::size_t kData = 9;
constexpr std::size_t kMultiplier = 10;
constexpr std::size_t kZones = 11;
constexpr std::size_t kQuality = 12;

using Lines = std::vector<std::string>;

/// A configuration of the edition of 2013, with a line replaced.
Lines linesWith(std::size_t number, std::string line) {
    Lines lines{"S,D,2013",
                "2,1A,1D",
                "1,Ia,A,,A,0.5,1,0,-32767,32767,1,1,P",
                "1,lost,,,0",
                "50",
                "1",
                "4000,2",
                "20/03/2024,10:00:00.000000",
                "20/03/2024,10:00:00.000000",
                "BINARY",
                "1",
                "0,0",
                "F,3"};
    lines.at(number) = std::move(line);
    return lines;
}

Lines plainLines() { return linesWith(kStation, "S,D,2013"); }

/// The same record in the edition of 1999.
Lines lines1999With(std::size_t number, std::string line) {
    Lines lines = linesWith(kStation, "S,D,1999");
    lines.resize(kZones);
    lines.at(number) = std::move(line);
    return lines;
}

std::string joined(Lines const& lines, std::string const& end = "\r\n") {
    std::string text;
    for (std::string const& line : lines) {
        text += line + end;
    }
    return text;
}

Bytes octetsOf(std::string const& text) { return {text.begin(), text.end()}; }

/// Two rows: 258 with the digital channel on, missing.
Bytes plainData() {
    return {0x01, 0, 0, 0, 0x00, 0, 0, 0, 0x02, 0x01, 0x01, 0x00,  //
            0x02, 0, 0, 0, 0xFA, 0, 0, 0, 0x00, 0x80, 0x00, 0x00};
}

/// What the reader says; empty where it reads.
std::string refusal(std::string const& cfg) {
    try {
        static_cast<void>(ComtradeReader::readConfiguration(cfg));
    } catch (ComtradeError const& error) {
        return error.what();
    }
    return "";
}

std::string refusal(Lines const& lines) { return refusal(joined(lines)); }

std::string refusalOfData(Lines const& lines, Bytes const& data) {
    try {
        static_cast<void>(ComtradeReader::read(joined(lines), data));
    } catch (ComtradeError const& error) {
        return error.what();
    }
    return "";
}

std::string refusalOfFile(std::string const& file) {
    try {
        static_cast<void>(ComtradeReader::readFile(octetsOf(file)));
    } catch (ComtradeError const& error) {
        return error.what();
    }
    return "";
}

bool isAt(std::string const& refusal, std::string const& place) {
    return refusal.rfind(place + ":", 0) == 0;
}

TEST(ComtradeReader, ReadsBinaryRows) {
    ReadComtrade const read = ComtradeReader::read(joined(plainLines()), plainData());
    EXPECT_EQ(read.station, "S");
    EXPECT_EQ(read.edition, 2013);
    EXPECT_EQ(read.start, 1'710'928'800'000'000'000);
    EXPECT_EQ(read.lineFrequency, 50);
    ASSERT_EQ(read.rows.size(), 2U);
    EXPECT_EQ(read.rows[0].analogs[0], 258);
    EXPECT_EQ(read.value(0, 0), 130);
    EXPECT_EQ(read.value(1, 0), std::nullopt);
    EXPECT_EQ(read.rows[0].digitals[0], true);
    EXPECT_EQ(read.rows[1].stamp, 250U);
}

TEST(ComtradeReader, ReadsBinary32Rows) {
    Lines lines = linesWith(kData, "BINARY32");
    ReadComtrade const read = ComtradeReader::read(
        joined(lines), {0x01, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00,
                        0x02, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x80, 0x01, 0x00});
    EXPECT_EQ(read.rows[0].analogs[0], -1);
    EXPECT_EQ(read.rows[0].stamp, std::nullopt);
    EXPECT_EQ(read.rows[1].analogs[0], std::nullopt);
}

TEST(ComtradeReader, ReadsTextRows) {
    for (std::string const edition : {"1999", "2013"}) {
        Lines lines = edition == "1999" ? lines1999With(kData, "ASCII") : linesWith(kData, "ASCII");
        ReadComtrade const read =
            ComtradeReader::read(joined(lines), octetsOf("1,0,-5,1\r\n2,250,99999,0\r\n"));
        EXPECT_EQ(read.rows[0].analogs[0], -5);
        EXPECT_EQ(read.rows[1].analogs[0], std::nullopt);
        EXPECT_EQ(read.rows[0].digitals[0], true);
    }
}

TEST(ComtradeReader, ReadsNanoseconds) {
    Lines lines = linesWith(kStart, "31/12/1969,23:59:59.999999999");
    lines[kTrigger] = "01/01/1970,00:00:00.000000001";
    ReadComtrade const read = ComtradeReader::readConfiguration(joined(lines));
    EXPECT_TRUE(read.isInNanoseconds);
    EXPECT_EQ(read.start, -1);
    EXPECT_EQ(read.trigger, 1);
}

TEST(ComtradeReader, ReadsAnEmptyLineFrequency) {
    EXPECT_EQ(ComtradeReader::readConfiguration(joined(linesWith(kFrequency, ""))).lineFrequency,
              std::nullopt);
}

TEST(ComtradeReader, RefusesOtherEndsOfLines) {
    EXPECT_TRUE(isAt(refusal(joined(plainLines(), "\n")), "cfg line 1"));
    EXPECT_TRUE(isAt(refusal(joined(plainLines(), "\r")), "cfg line 1"));
    std::string cut = joined(plainLines());
    cut.pop_back();
    EXPECT_TRUE(isAt(refusal(cut), "cfg line 13"));
}

TEST(ComtradeReader, RefusesFewerAndMoreLines) {
    std::string const text = joined(plainLines());
    for (std::size_t end = text.size() - 1; end > 0; --end) {
        EXPECT_NE(refusal(text.substr(0, end)), "");
    }
    EXPECT_TRUE(isAt(refusal(text + "0\r\n"), "cfg line 13"));
    Lines lines = plainLines();
    lines.resize(kZones);
    EXPECT_NE(refusal(lines), "");
}

struct BrokenLine {
    std::size_t number;
    std::string line;
};

class ComtradeLine : public testing::TestWithParam<BrokenLine> {};

std::string const kLong(65, 'x');

INSTANTIATE_TEST_SUITE_P(
    Breaks, ComtradeLine,
    testing::Values(
        BrokenLine{kStation, "S,D"}, BrokenLine{kStation, "S,D,1991"},
        BrokenLine{kStation, kLong + ",D,2013"}, BrokenLine{kStation, "S," + kLong + ",2013"},
        BrokenLine{kStation, "S\t,D,2013"}, BrokenLine{kStation, "\xC3\xBC,D,2013"},
        BrokenLine{kStation, " S,D,2013"}, BrokenLine{kCounts, "3,1A,1D"},
        BrokenLine{kCounts, "2,1D,1A"}, BrokenLine{kCounts, "2,1A"}, BrokenLine{kCounts, "2,1,1"},
        BrokenLine{kCounts, "0,0A,0D"}, BrokenLine{kCounts, "1000000,999999A,1D"},
        BrokenLine{kAnalog, "2,Ia,A,,A,0.5,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1," + kLong + ",A,,A,0.5,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,ABC,,A,0.5,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A," + kLong + ",A,0.5,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A,,,0.5,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A,," + std::string(33, 'u') + ",1,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A,,A,,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A,,A,0;5,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A,,A,inf,1,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A,,A,0.5,nan,0,-32767,32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A,,A,0." + std::string(31, '1') + ",1,0,-32767,32767,1,1,P"}));

INSTANTIATE_TEST_SUITE_P(
    BreaksToo, ComtradeLine,
    testing::Values(
        BrokenLine{kAnalog, "1,Ia,A,,A,0.5,1,0,32767,-32767,1,1,P"},
        BrokenLine{kAnalog, "1,Ia,A,,A,0.5,1,0,-32767,32767,1,1,X"},
        BrokenLine{kAnalog, "1,Ia,A,,A,0.5,1,0,-32767,32767,1,1"},
        BrokenLine{kDigital, "2,lost,,,0"}, BrokenLine{kDigital, "1,lost,,,2"},
        BrokenLine{kDigital, "1,lost,,0"}, BrokenLine{kDigital, "1," + kLong + ",,,0"},
        BrokenLine{kDigital, "1,lost,ABC,,0"}, BrokenLine{kDigital, "1,lost,," + kLong + ",0"},
        BrokenLine{kFrequency, "f"}, BrokenLine{kRates, "0"}, BrokenLine{kRates, "2"},
        BrokenLine{kRate, "0,2"}, BrokenLine{kRate, "4000,0"},
        BrokenLine{kRate, "4000,10000000000"}, BrokenLine{kStart, "20/03/2024,10:00:00"},
        BrokenLine{kStart, "20/03/2024,10:00:00.000"},
        BrokenLine{kStart, "30/02/2024,10:00:00.000000"},
        BrokenLine{kStart, "20-03-2024,10:00:00.000000"},
        BrokenLine{kStart, "20/03/2024,24:00:00.000000"},
        BrokenLine{kStart, "20/03/2024,10:60:00.000000"},
        BrokenLine{kStart, "20/03/2024,10:00:60.000000"},
        BrokenLine{kStart, "20/03/2024,10:00:00,000000"},
        BrokenLine{kStart, "20/03/2024,10:00:-1.000000"},
        BrokenLine{kTrigger, "20/03/2024,10:00:00.000000000"}, BrokenLine{kData, "FLOAT32"},
        BrokenLine{kData, ""}, BrokenLine{kMultiplier, "0"}, BrokenLine{kMultiplier, ""},
        BrokenLine{kZones, "0"}, BrokenLine{kZones, ",0"}, BrokenLine{kZones, "0,+100h30"},
        BrokenLine{kQuality, "C,3"}, BrokenLine{kQuality, "G,3"}, BrokenLine{kQuality, "F,4"},
        BrokenLine{kQuality, "F"}));

TEST_P(ComtradeLine, IsRefusedWhereItIs) {
    auto const& [number, line] = GetParam();
    ASSERT_EQ(refusal(plainLines()), "");
    EXPECT_TRUE(isAt(refusal(linesWith(number, line)), "cfg line " + std::to_string(number + 1)))
        << line << ": " << refusal(linesWith(number, line));
}

TEST(ComtradeReader, RefusesMinAndMaxThatTheDataDoNotHold) {
    std::string const begin = "1,Ia,A,,A,0.5,1,0,";
    EXPECT_NE(refusal(linesWith(kAnalog, begin + "-32768,32767,1,1,P")), "");
    EXPECT_NE(refusal(linesWith(kAnalog, begin + "-32767,32767.5,1,1,P")), "");
    Lines wide = linesWith(kAnalog, begin + "-2147483648,2147483647,1,1,P");
    wide[kData] = "BINARY32";
    EXPECT_NE(refusal(wide), "");
    wide[kData] = "ASCII";
    EXPECT_EQ(refusal(wide), "");
    Lines old = lines1999With(kAnalog, begin + "-100000,99999,1,1,P");
    old[kData] = "ASCII";
    EXPECT_NE(refusal(old), "");
}

TEST(ComtradeReader, RefusesInTheEditionOf1999WhatItHasNot) {
    EXPECT_EQ(refusal(lines1999With(kData, "BINARY")), "");
    EXPECT_TRUE(isAt(refusal(lines1999With(kData, "BINARY32")), "cfg line 10"));
    Lines nanoseconds = lines1999With(kStart, "20/03/2024,10:00:00.000000000");
    nanoseconds[kTrigger] = nanoseconds[kStart];
    EXPECT_TRUE(isAt(refusal(nanoseconds), "cfg line 9"));
    Lines more = lines1999With(kMultiplier, "1");
    more.emplace_back("0,0");
    EXPECT_NE(refusal(more), "");
}

TEST(ComtradeReader, RefusesDataOfAnotherSize) {
    Bytes data = plainData();
    EXPECT_EQ(refusalOfData(plainLines(), data), "");
    data.push_back(0);
    EXPECT_NE(refusalOfData(plainLines(), data), "");
    data.resize(12);
    EXPECT_NE(refusalOfData(plainLines(), data), "");
    EXPECT_NE(refusalOfData(linesWith(kData, "BINARY32"), plainData()), "");
}

std::string refusalOfChanged(std::size_t at, std::uint8_t octet) {
    Bytes data = plainData();
    data.at(at) = octet;
    return refusalOfData(plainLines(), data);
}

TEST(ComtradeReader, RefusesBinaryRowsThatCannotBe) {
    // Sample numbers, a bit without a channel, a stamp missing, stamps that go back.
    EXPECT_NE(refusalOfChanged(0, 0), "");
    EXPECT_NE(refusalOfChanged(12, 3), "");
    EXPECT_NE(refusalOfChanged(10, 0x02), "");
    EXPECT_NE(refusalOfChanged(5, 0x01), "");
    Bytes data = plainData();
    for (std::size_t at = 4; at < 8; ++at) {
        data[at] = 0xFF;
    }
    EXPECT_NE(refusalOfData(plainLines(), data), "");
}

TEST(ComtradeReader, RefusesSamplesBeyondMinAndMax) {
    Lines const lines = linesWith(kAnalog, "1,Ia,A,,A,0.5,1,0,-300,257,1,1,P");
    EXPECT_NE(refusalOfData(lines, plainData()), "");
}

TEST(ComtradeReader, RefusesTextRowsThatCannotBe) {
    Lines const lines = linesWith(kData, "ASCII");
    Lines const old = lines1999With(kData, "ASCII");
    std::string const first = "1,0,5,1\r\n";
    EXPECT_EQ(refusalOfData(lines, octetsOf(first + "2,250,5,1\r\n")), "");
    for (std::string const row :
         {"2,250,,1\r\n", "2,,5,1\r\n", "2,250,5,\r\n", "2,250,5,2\r\n", "3,250,5,1\r\n",
          "2,250,5\r\n", "2,250,5,1,1\r\n", "2,250,5,1\n", "2,250,5,1", "2,250, 5,1\r\n",
          "2,10000000000000,5,1\r\n", "2,250,40000,1\r\n", "", "2,250,5,1\r\n3,500,5,1\r\n",
          "2,250,5,01\r\n"}) {
        EXPECT_NE(refusalOfData(lines, octetsOf(first + row)), "") << row;
        EXPECT_NE(refusalOfData(old, octetsOf(first + row)), "") << row;
    }
    EXPECT_EQ(refusalOfData(lines, octetsOf(first + "2,9999999999999,5,1\r\n")), "");
    EXPECT_TRUE(isAt(refusalOfData(old, octetsOf(first + "2,99999999999,5,1\r\n")), "dat row 2"));
}

std::string fileOf(std::string const& cfg, std::string const& dataHeader, std::string const& data) {
    return "--- file type: CFG ---\r\n" + cfg + "--- file type: INF ---\r\ni\r\n" +
           "--- file type: HDR ---\r\nh\r\n" + dataHeader + data;
}

TEST(ComtradeReader, ReadsOneFile) {
    Bytes const data = plainData();
    std::string const file = fileOf(joined(plainLines()), "--- file type: DAT BINARY: 24 ---\r\n",
                                    std::string(data.begin(), data.end()));
    ReadComtrade const read = ComtradeReader::readFile(octetsOf(file));
    EXPECT_EQ(read.information, "i\r\n");
    EXPECT_EQ(read.header, "h\r\n");
    EXPECT_EQ(read.rows.size(), 2U);
}

TEST(ComtradeReader, RefusesFilesWithOtherSections) {
    std::string const cfg = joined(linesWith(kData, "ASCII"));
    std::string const header = "--- file type: DAT ASCII ---\r\n";
    std::string const data = "1,0,5,1\r\n2,250,5,1\r\n";
    std::string const good = fileOf(cfg, header, data);
    ASSERT_EQ(refusalOfFile(good), "");
    EXPECT_TRUE(isAt(refusalOfFile("x\r\n" + good), "cff line 2"));
    EXPECT_NE(refusalOfFile(cfg), "");
    for (std::string const mark : {"CFG", "INF", "HDR", "DAT"}) {
        std::string changed = good;
        changed.replace(changed.find(mark + " "), 3, "XXX");
        EXPECT_NE(refusalOfFile(changed), "") << mark;
    }
    EXPECT_NE(refusalOfFile(fileOf(cfg, "--- file type: DAT BINARY: 20 ---\r\n", data)), "");
    EXPECT_NE(refusalOfFile(fileOf(joined(lines1999With(kData, "ASCII")), header, data)), "");
    Bytes const octets = plainData();
    EXPECT_NE(refusalOfFile(fileOf(joined(plainLines()), "--- file type: DAT BINARY: 23 ---\r\n",
                                   std::string(octets.begin(), octets.end()))),
              "");
}

}  // namespace
}  // namespace TalTest::ComtradeReaderTest
