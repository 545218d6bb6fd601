#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/output/RowWriter.hpp"
#include "tools/render/StreamLayout.hpp"

namespace TalIec61850Tools {
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
    row.source = "00:30:a7:00:00:01";
    row.destination = "01:0c:cd:01:00:01";
    row.vlan = {.priority = {}, .dei = {}, .vlanId = 5};
    row.hsr = {.hsrSpare1 = {}, .lanId = 'B', .hsrSpare2 = {}, .hsrSpare3 = {}};
    row.appId = 0x1F;
    row.reserved1Bit0 = 1;
    row.gocbRef = "RELAY1LD0/LLN0$GO$gcb1";
    row.datSet = "dataSet1";
    row.goID = "";
    row.confRev = 10001;
    row.simulationPresent = true;
    row.packets = 3;
    row.files = 1;
    row.timedPackets = 3;
    row.firstTime = toCaptureTime({1700000000, 123456789});
    row.lastTime = toCaptureTime({1700000004, 123456789});
    return row;
}

StreamRow svRow() {
    StreamRow row;
    row.protocol = Protocol::sv;
    row.source = "00:30:a7:00:00:02";
    row.destination = "01:0c:cd:04:00:01";
    row.prp = {.sequenceNumber = {}, .lanId = 'A', .lsduSize = {}};
    row.appId = 0x4000;
    row.reserved1Bit0 = 0;
    row.svID = "MU01";
    row.confRev = 1;
    row.packets = 6'000'000'000;
    row.files = 2;
    return row;
}

StreamRow rowNamed(std::string const& svID) {
    StreamRow row = svRow();
    row.svID = svID;
    return row;
}

TEST(StreamTable, AlignsColumnsAndPutsNamesLast) {
    EXPECT_EQ(
        write(Format::table, {gooseRow(), svRow()}),
        "PROTO  SOURCE             DESTINATION        VLAN   APPID  HSR  R1B0  CONFREV  SIM-ELEM"
        "     PACKETS  FILES  FIRST                           LAST                            "
        "PACKETS/S  SVID/GOCBREF            DATSET    GOID\n"
        "GOOSE  00:30:a7:00:00:01  01:0c:cd:01:00:01     5  0x001F  B       1    10001  yes     "
        "           3      1  2023-11-14T22:13:20.123456789Z  2023-11-14T22:13:24.123456789Z  "
        "    0.500  RELAY1LD0/LLN0$GO$gcb1  dataSet1  \"\"\n"
        "SV     00:30:a7:00:00:02  01:0c:cd:04:00:01     -  0x4000  -       0        1  -       "
        "  6000000000      2  -                               -                               "
        "        -  MU01                    -         -\n");
}

TEST(StreamTable, WritesHeadingsAboveNoRows) {
    EXPECT_EQ(write(Format::table, {}),
              "PROTO  SOURCE  DESTINATION  VLAN  APPID  HSR  R1B0  CONFREV  SIM-ELEM  PACKETS  "
              "FILES  FIRST  LAST  PACKETS/S  SVID/GOCBREF  DATSET  GOID\n");
}

TEST(StreamTable, MakesOneLineOfEveryRowWhateverItsNames) {
    auto const text = write(Format::table, {rowNamed("a\n\x1b[31m\xff"), rowNamed("Süd")});
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
    EXPECT_NE(text.find(R"(a\n\x1b[31m\xff  -  )"), std::string::npos);
    EXPECT_NE(text.find("Süd" + std::string(12, ' ') + "  -  "), std::string::npos);
}

TEST(StreamTable, SaysYesNoOrNothingOfTheSimulationElement) {
    StreamRow row = gooseRow();
    row.simulationPresent = false;
    EXPECT_NE(write(Format::table, {row}).find("10001  no  "), std::string::npos);
}

TEST(StreamJson, WritesOneObjectPerLineWithFieldsInAFixedOrder) {
    EXPECT_EQ(
        write(Format::json, {gooseRow(), svRow()}),
        R"({"protocol":"GOOSE","source":"00:30:a7:00:00:01","destination":"01:0c:cd:01:00:01",)"
        R"("vlanId":5,"appId":"0x001F","hsrLane":"B","prpLane":null,"reserved1Bit0":1,"svID":null,)"
        R"("gocbRef":"RELAY1LD0/LLN0$GO$gcb1","datSet":"dataSet1","goID":"","confRev":10001,)"
        R"("simulationPresent":true,"packets":3,"files":1,)"
        R"("firstTime":"2023-11-14T22:13:20.123456789Z","firstTimeNs":1700000000123456789,)"
        R"("lastTime":"2023-11-14T22:13:24.123456789Z","lastTimeNs":1700000004123456789,)"
        R"("packetsPerSecond":0.5})"
        "\n"
        R"({"protocol":"SV","source":"00:30:a7:00:00:02","destination":"01:0c:cd:04:00:01",)"
        R"("vlanId":null,"appId":"0x4000","hsrLane":null,"prpLane":"A","reserved1Bit0":0,)"
        R"("svID":"MU01","gocbRef":null,"datSet":null,"goID":null,"confRev":1,)"
        R"("simulationPresent":null,"packets":6000000000,"files":2,"firstTime":null,)"
        R"("firstTimeNs":null,"lastTime":null,"lastTimeNs":null,"packetsPerSecond":null})"
        "\n");
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
              "protocol,source,destination,vlanId,appId,hsrLane,prpLane,reserved1Bit0,svID,gocbRef,"
              "datSet,goID,confRev,simulationPresent,packets,files,firstTime,firstTimeNs,lastTime,"
              "lastTimeNs,packetsPerSecond\n"
              "GOOSE,00:30:a7:00:00:01,01:0c:cd:01:00:01,5,0x001F,B,,1,,RELAY1LD0/LLN0$GO$gcb1,"
              "dataSet1,\"\",10001,true,3,1,2023-11-14T22:13:20.123456789Z,1700000000123456789,"
              "2023-11-14T22:13:24.123456789Z,1700000004123456789,0.5\n"
              "SV,00:30:a7:00:00:02,01:0c:cd:04:00:01,,0x4000,,A,0,MU01,,,,1,,6000000000,2,,,,,\n");
}

TEST(StreamCsv, NamesTheFieldsEvenWithoutRows) {
    auto const text = write(Format::csv, {});
    EXPECT_TRUE(text.starts_with("protocol,source,"));
    EXPECT_TRUE(text.ends_with(",packetsPerSecond\n"));
}

TEST(StreamCsv, QuotesCommasAndDoublesQuotes) {
    auto const text = write(Format::csv, {rowNamed(R"(a "b",c)")});
    EXPECT_NE(text.find(R"(,0,"a ""b"",c",,)"), std::string::npos);
}

TEST(StreamCsv, MakesOneLineOfEveryRowWhateverItsNames) {
    auto const text = write(Format::csv, {rowNamed("a\r\n\x1b\xff\\")});
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
    EXPECT_NE(text.find(R"(,0,a\r\n\x1b\xff\\,,)"), std::string::npos);
}

}  // namespace
}  // namespace TalIec61850Tools
