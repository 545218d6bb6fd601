#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/output/RowWriter.hpp"
#include "tools/render/StreamLayout.hpp"

namespace TalIec61850Tools::WritersTest {
namespace {

using Rows = std::vector<StreamRow>;

std::string write(Format format, Rows const& rows) {
    std::string text;
    RowWriter<StreamRow> writer(format, streamLayout(),
                                [&](std::string_view piece) { text += piece; });
    for (StreamRow const& row : rows) {
        writer.write(row);
    }
    writer.finish();
    return text;
}

StreamRow gooseRow() {
    StreamRow row;
    row.protocol = Protocol::goose;
    row.source = MacAddress{0x00, 0x30, 0xA7, 0x00, 0x00, 0x01};
    row.destination = MacAddress{0x01, 0x0C, 0xCD, 0x01, 0x00, 0x01};
    row.vlans = {{.tpid = 0x88A8, .id = 7}, {.tpid = 0x8100, .id = 5}};
    row.appId = 0x1F;
    row.gocbRef = "RELAY1LD0/LLN0$GO$gcb1";
    row.datSet = "dataSet1";
    row.goID = "";
    row.confRev = 10001U;
    row.isSimulated = true;
    row.packets = 3;
    row.files = 1;
    row.timedPackets = 3;
    row.firstPackets = 1;
    row.firstTime = TalIec61850Analysis::makeCaptureTime(1700000000, 123456789);
    row.lastTime = TalIec61850Analysis::makeCaptureTime(1700000004, 123456789);
    return row;
}

StreamRow svRow() {
    StreamRow row;
    row.protocol = Protocol::sv;
    row.source = MacAddress{0x00, 0x30, 0xA7, 0x00, 0x00, 0x02};
    row.destination = MacAddress{0x01, 0x0C, 0xCD, 0x04, 0x00, 0x01};
    row.appId = 0x4000;
    row.svID = "MU01";
    row.confRev = 1U;
    row.asdusPerFrame = 8;
    row.nominalRate = 4000;
    row.packets = 6'000'000'000;
    row.copies = 5'999'999'999;
    row.overPrp = {6'000'000'000, 5'999'999'999};
    row.files = 2;
    return row;
}

StreamRow rowNamed(std::string const& svID) {
    StreamRow row = svRow();
    row.svID = svID;
    return row;
}

TEST(StreamTable, AlignsColumnsAndPutsTheNameFirst) {
    EXPECT_EQ(
        write(Format::table, {gooseRow(), svRow()}),
        "PROTO  SVID/GOCBREF             APPID  SOURCE             DESTINATION        VLAN  "
        "VLANS          CONFREV  SIM  ASDUS  NOMINAL/S  PACKETS/S     PACKETS      COPIES  "
        "                  A/B  FILES  FIRST                           LAST                    "
        "        DATSET    GOID\n"
        "GOOSE  RELAY1LD0/LLN0$GO$gcb1  0x001F  00:30:a7:00:00:01  01:0c:cd:01:00:01     5  "
        "88a8:7/8100:5    10001  yes      -          -      0.500           3           -  "
        "                    -      1  2023-11-14T22:13:20.123456789Z  2023-11-14T22:13:24.1234"
        "56789Z  dataSet1  \"\"\n"
        "SV     MU01                    0x4000  00:30:a7:00:00:02  01:0c:cd:04:00:01     -  "
        "-                    1  -        8     4000.0          -  6000000000  5999999999  "
        "6000000000/5999999999      2  -                               -                       "
        "        -         -\n");
}

TEST(StreamTable, WritesHeadingsAboveNoRows) {
    EXPECT_EQ(write(Format::table, {}),
              "PROTO  SVID/GOCBREF  APPID  SOURCE  DESTINATION  VLAN  VLANS  CONFREV  SIM  ASDUS  "
              "NOMINAL/S  PACKETS/S  PACKETS  COPIES  A/B  FILES  FIRST  LAST  DATSET  GOID\n");
}

TEST(StreamTable, MakesOneLineOfEveryRowWhateverItsNames) {
    auto const text = write(Format::table, {rowNamed("a\n\x1b[31m\xff"), rowNamed("Süd")});
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
    EXPECT_NE(text.find(R"(a\n\x1b[31m\xff  0x4000  )"), std::string::npos);
    EXPECT_NE(text.find("Süd" + std::string(12, ' ') + "  0x4000  "), std::string::npos);
}

TEST(StreamJson, WritesOneObjectPerLineWithFieldsInAFixedOrder) {
    EXPECT_EQ(
        write(Format::json, {gooseRow(), svRow()}),
        R"({"protocol":"GOOSE","source":"00:30:a7:00:00:01","destination":"01:0c:cd:01:00:01",)"
        R"("vlanId":5,"vlanStack":"88a8:7/8100:5","appId":"0x001F","svID":null,)"
        R"("gocbRef":"RELAY1LD0/LLN0$GO$gcb1","datSet":"dataSet1","goID":"","confRev":10001,)"
        R"("simulated":true,"asdusPerFrame":null,"nominalRate":null,"packets":3,"copies":0,)"
        R"("files":1,"firstTime":"2023-11-14T22:13:20.123456789Z",)"
        R"("firstTimeNs":1700000000123456789,"lastTime":"2023-11-14T22:13:24.123456789Z",)"
        R"("lastTimeNs":1700000004123456789,"packetsPerSecond":0.5})"
        "\n"
        R"({"protocol":"SV","source":"00:30:a7:00:00:02","destination":"01:0c:cd:04:00:01",)"
        R"("vlanId":null,"vlanStack":null,"appId":"0x4000","svID":"MU01","gocbRef":null,)"
        R"("datSet":null,"goID":null,"confRev":1,"simulated":false,"asdusPerFrame":8,)"
        R"("nominalRate":4000.0,"packets":6000000000,"copies":5999999999,"files":2,)"
        R"("firstTime":null,"firstTimeNs":null,"lastTime":null,"lastTimeNs":null,)"
        R"("packetsPerSecond":null})"
        "\n");
}

TEST(StreamJson, WritesAConfRevThatIsNoNumberAsItsOctets) {
    StreamRow row = gooseRow();
    row.confRev = TalIec61850Analysis::OctetString{1, 2, 3, 4, 5, 6, 7, 8, 0xFF};
    EXPECT_NE(write(Format::json, {row}).find(R"("confRev":"0102030405060708ff",)"),
              std::string::npos);
}

TEST(StreamJson, WritesNothingForNoRows) { EXPECT_EQ(write(Format::json, {}), ""); }

TEST(StreamJson, GivesNamesBackAsTheyWere) {
    std::string const name = "a\n\t\x1b[31m\x7f\"\\Süd\u202e,\x01";
    auto const text = write(Format::json, {rowNamed(name)});
    EXPECT_EQ(nlohmann::json::parse(text)["svID"], name);
}

TEST(StreamJson, WritesPrintableAsciiAlone) {
    auto const text = write(Format::json, {rowNamed("\n\x1b\x7f\xc2\x9bSüd\xff")});
    EXPECT_TRUE(
        std::all_of(text.begin(), text.end() - 1, [](char c) { return c >= ' ' && c < '\x7f'; }));
}

TEST(StreamJson, ReplacesOctetsThatAreNoUtf8) {
    auto const text = write(Format::json, {rowNamed("a\xff"
                                                    "b\xe5")});
    EXPECT_EQ(nlohmann::json::parse(text)["svID"], "a\ufffdb\ufffd");
}

TEST(StreamCsv, WritesFieldNamesThenTheSameFieldsAsJson) {
    EXPECT_EQ(write(Format::csv, {gooseRow(), svRow()}),
              "protocol,source,destination,vlanId,vlanStack,appId,svID,gocbRef,datSet,goID,confRev,"
              "simulated,asdusPerFrame,nominalRate,packets,copies,files,firstTime,firstTimeNs,"
              "lastTime,lastTimeNs,packetsPerSecond\n"
              "GOOSE,00:30:a7:00:00:01,01:0c:cd:01:00:01,5,88a8:7/8100:5,0x001F,,"
              "RELAY1LD0/LLN0$GO$gcb1,dataSet1,\"\",10001,true,,,3,0,1,"
              "2023-11-14T22:13:20.123456789Z,1700000000123456789,"
              "2023-11-14T22:13:24.123456789Z,1700000004123456789,0.5\n"
              "SV,00:30:a7:00:00:02,01:0c:cd:04:00:01,,,0x4000,MU01,,,,1,false,8,4000.0,6000000000,"
              "5999999999,2,,,,,\n");
}

TEST(StreamSpreadsheet, IsCsvInWhichNoTextIsAFormula) {
    auto const cellOf = [](std::string const& name) {
        auto const text = write(Format::spreadsheet, {rowNamed(name)});
        auto const begin = text.find("0x4000,") + 7;
        return text.substr(begin, text.find(",,,,1,", begin) - begin);
    };
    EXPECT_EQ(cellOf("=1+1"), "'=1+1");
    EXPECT_EQ(cellOf("=cmd|' /C calc'!A0"), "'=cmd|' /C calc'!A0");
    EXPECT_EQ(cellOf("+1"), "'+1");
    EXPECT_EQ(cellOf("-1"), "'-1");
    EXPECT_EQ(cellOf("@x,y"), "\"'@x,y\"");
    EXPECT_EQ(cellOf("MU01"), "MU01");
    EXPECT_EQ(write(Format::spreadsheet, {gooseRow()}), write(Format::csv, {gooseRow()}));
}

TEST(StreamCsv, NamesTheFieldsEvenWithoutRows) {
    auto const text = write(Format::csv, {});
    EXPECT_TRUE(text.starts_with("protocol,source,"));
    EXPECT_TRUE(text.ends_with(",packetsPerSecond\n"));
}

TEST(StreamCsv, QuotesCommasAndDoublesQuotes) {
    auto const text = write(Format::csv, {rowNamed(R"(a "b",c)")});
    EXPECT_NE(text.find(R"(,0x4000,"a ""b"",c",,)"), std::string::npos);
}

TEST(StreamCsv, MakesOneLineOfEveryRowWhateverItsNames) {
    auto const text = write(Format::csv, {rowNamed("a\r\n\x1b\xff\\")});
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
    EXPECT_NE(text.find(R"(,0x4000,a\r\n\x1b\xff\\,,)"), std::string::npos);
}

}  // namespace
}  // namespace TalIec61850Tools::WritersTest
