// Records in one file, and texts beside the data.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeFile.hpp>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "analysis/comtrade/EncodedComtrade.hpp"
#include "support/Bytes.hpp"
#include "support/ComtradeReader.hpp"

namespace TalTest::ComtradeFileTest {
namespace {

using namespace TalIec61850Analysis;

constexpr ComtradeFormat kText{ComtradeEdition::of2013, ComtradeData::ascii};
constexpr ComtradeFormat kBinary{ComtradeEdition::of2013, ComtradeData::binary};
constexpr ComtradeFormat kBinary32{ComtradeEdition::of2013, ComtradeData::binary32};

TEST(ComtradeFiles, StartWithTheseSections) {
    ComtradeRecord const record = recordOf(kBinary32, 1, 1, 3);
    EXPECT_EQ(comtradeFileHead(record, "i\n", "h"), "--- file type: CFG ---\r\n" +
                                                        comtradeConfiguration(record) +
                                                        "--- file type: INF ---\r\ni\r\n"
                                                        "--- file type: HDR ---\r\nh\r\n"
                                                        "--- file type: DAT BINARY32: 42 ---\r\n");
}

TEST(ComtradeFiles, HaveSectionsThatMayBeEmpty) {
    ComtradeRecord const record = recordOf(kText, 1, 0, 3);
    EXPECT_EQ(comtradeFileHead(record, "", ""), "--- file type: CFG ---\r\n" +
                                                    comtradeConfiguration(record) +
                                                    "--- file type: INF ---\r\n"
                                                    "--- file type: HDR ---\r\n"
                                                    "--- file type: DAT ASCII ---\r\n");
}

/// A record of three rows as one file, read.
ReadComtrade fileReadBack(ComtradeRecord const& record, std::string const& information,
                          std::string const& header) {
    std::vector<std::int32_t> const samples{1, -2, 3};
    std::vector<std::uint8_t> const states{1, 0, 1};
    std::string const head = comtradeFileHead(record, information, header);
    Bytes const data =
        encoded(record,
                {.analogs = {{.samples = std::span<std::int32_t const>(samples), .missing = {}}},
                 .digitals = {states}})
            .octets;
    return ComtradeReader::readFile(concat({Bytes(head.begin(), head.end()), data}));
}

TEST(ComtradeFiles, AreReadBack) {
    for (ComtradeFormat const format : {kText, kBinary, kBinary32}) {
        ReadComtrade const read = fileReadBack(recordOf(format, 1, 1, 3), "i", "h\nh");
        EXPECT_EQ(read.information, "i\r\n");
        EXPECT_EQ(read.header, "h\r\nh\r\n");
        EXPECT_EQ(read.rows.at(1).analogs.at(0), -2);
        EXPECT_EQ(read.rows.at(2).digitals.at(0), true);
    }
}

TEST(ComtradeFiles, HaveNoSectionHeaderInTheirTexts) {
    std::string const mark = "--- file type: DAT ASCII ---";
    ComtradeRecord record = recordOf(kBinary, 1, 1, 3);
    record.station = mark;
    record.analogs[0].id = mark;
    ReadComtrade const read = fileReadBack(record, mark + "\n" + mark, "a\n  " + mark + "--\n-- b");
    EXPECT_EQ(read.station, "___ file type: DAT ASCII ___");
    EXPECT_EQ(read.header, "a\r\n  ___ file type: DAT ASCII _____\r\n-- b\r\n");
    EXPECT_EQ(read.rows.size(), 3U);
}

TEST(ComtradeFiles, AreNotInTheEditionOf1999) {
    ComtradeRecord const record = recordOf({ComtradeEdition::of1999, ComtradeData::ascii}, 1, 1, 3);
    EXPECT_THROW(static_cast<void>(comtradeFileHead(record, "", "")), std::invalid_argument);
}

TEST(ComtradeFiles, AreNotMadeOfRecordsThatCannotBeWritten) {
    EXPECT_THROW(static_cast<void>(comtradeFileHead(recordOf(kText, 0, 0, 3), "", "")),
                 std::invalid_argument);
    EXPECT_THROW(static_cast<void>(comtradeDataSize(recordOf(kText, 0, 0, 3))),
                 std::invalid_argument);
}

TEST(ComtradeDataSizes, AreThoseOfTheRows) {
    EXPECT_EQ(comtradeDataSize(recordOf(kBinary32, 8, 16, 1)), 42U);
    EXPECT_EQ(comtradeDataSize(recordOf(kBinary32, 8, 17, 2)), 88U);
    EXPECT_EQ(comtradeDataSize(recordOf(kBinary, 3, 0, 0xFFFFFFFF)), 0xFFFFFFFFULL * 14);
    EXPECT_EQ(comtradeDataSize(recordOf(kText, 3, 0, 1)), std::nullopt);
}

TEST(ComtradeTextFiles, HaveLinesThatEndWithCrLf) {
    EXPECT_EQ(comtradeText(""), "");
    EXPECT_EQ(comtradeText("a"), "a\r\n");
    EXPECT_EQ(comtradeText("a\nb\r\nc\rd\n\ne\r\n"), "a\r\nb\r\nc\r\nd\r\n\r\ne\r\n");
}

TEST(ComtradeTextFiles, HaveNoControlCharacters) {
    EXPECT_EQ(comtradeText(std::string("a\0\x1A\x7F\tb", 6)), "a___\tb\r\n");
}

}  // namespace
}  // namespace TalTest::ComtradeFileTest
