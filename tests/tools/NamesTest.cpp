// Names of streams and values from a description of the station: --scl and --ied.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/DescribedStation.hpp"
#include "tools/SclTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::NamesTest {
namespace {

std::string const kTripName = "LD0/PTRC1.Tr.general";
std::string const kGcb1 = "RELAY1LD0/LLN0$GO$gcb1";

/// A capture and its description.
class Described {
public:
    explicit Described(Bytes const& capture, std::string const& description = describedStation())
        : capture_(folder_.write("a.pcap", capture)),
          station_(folder_.write("station.scd", octetsOfText(description))) {}

    [[nodiscard]] std::string const& capture() const { return capture_; }
    [[nodiscard]] std::string const& station() const { return station_; }

    /// The command with --scl and the capture.
    [[nodiscard]] Arguments command(Arguments const& words, Arguments const& options = {}) const {
        return joined(joined(words, {"--scl", station_}), joined(options, {capture_}));
    }

private:
    TempDir folder_;
    std::string capture_;
    std::string station_;
};

std::vector<std::string> changedNames(Json const& changes) {
    std::vector<std::string> names;
    for (Json const& change : changes) {
        names.push_back(change["name"].is_null() ? "" : change["name"].get<std::string>());
    }
    return names;
}

TEST(NamedStreams, HaveIedAndControlBlockAtTheEnd) {
    Described const station(describedTrips());
    auto const rows = rowsOf(station.command({"streams"}));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["ied"], "RELAY1");
    EXPECT_EQ(rows[0]["controlBlock"], kGcb1);
    EXPECT_EQ(rows[1]["ied"], "RELAY2");
    auto const heading = linesOf(runCompanion(station.command({"streams", "-f", "csv"})).out).at(0);
    EXPECT_TRUE(heading.ends_with(",packetsPerSecond,ied,controlBlock")) << heading;
    EXPECT_NE(runCompanion(station.command({"streams"})).out.find("  IED"), std::string::npos);
}

TEST(NamedStreams, LackThemWithoutADescription) {
    Described const station(describedTrips());
    auto const rows = rowsOf({"streams", station.capture()});
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_FALSE(rows[0].contains("ied"));
    EXPECT_FALSE(rowsOf({"packets", station.capture()}).at(0).contains("ied"));
    EXPECT_FALSE(rowsOf({"show", station.capture()}).at(0)["goose"]["allData"][0].contains("name"));
}

TEST(NamedStreams, AreNullWhereTheyAreNotDescribed) {
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    capture.add(1'700'000'000, 0, gooseFrame(Ethernet().to("01:0c:cd:01:00:99"), [] {
                    GooseMessage message;
                    message.gocbRef = "OTHER";
                    message.appId = 9;
                    return message;
                }()));
    Described const station(capture.bytes());
    auto const row = rowsOf(station.command({"streams"})).at(0);
    EXPECT_TRUE(row["ied"].is_null());
    EXPECT_TRUE(row["controlBlock"].is_null());
}

TEST(NamedStreams, AreKnownByTheirAddressToo) {
    GooseMessage message = relay1Message(1, false);
    message.gocbRef = "WRONG/LLN0$GO$gcb1";
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    capture.add(1'700'000'000, 0, gooseFrame(Ethernet(), message));
    Described const station(capture.bytes());
    EXPECT_EQ(rowsOf(station.command({"streams"})).at(0)["ied"], "RELAY1");
    auto const shown = rowsOf(station.command({"show"})).at(0)["goose"]["allData"];
    EXPECT_EQ(shown[0]["name"], kTripName);
}

/// Another stream, to where RELAY1 sends.
Bytes strangerFrame(std::string const& gocbRef) {
    GooseMessage message;
    message.gocbRef = gocbRef;
    message.setData({dataBoolean(true)});
    return gooseFrame(Ethernet().from("02:00:00:00:00:77"), message);
}

/// A message of RELAY1 and one of another stream that goes to the same address.
Bytes relay1AndStranger() {
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    capture.add(1'700'000'000, 0, gooseFrame(Ethernet(), relay1Message(1, false)));
    capture.add(1'700'000'000, 1000, strangerFrame("STRANGER"));
    return capture.bytes();
}

TEST(NamedStreams, OfOneAddressAreThoseOfControlBlocksWithoutAStreamOfTheirName) {
    // gcb2 has the address of gcb1, and its stream a wrong name.
    std::string const description =
        replaced(describedStation(), "01-0C-CD-01-00-02</P><P type='APPID'>0002",
                 "01-0C-CD-01-00-01</P><P type='APPID'>0001");
    Described const station(relay1AndStranger(), description);
    for (Json const& row : rowsOf(station.command({"streams"}))) {
        EXPECT_EQ(row["ied"], row["gocbRef"] == kGcb1 ? "RELAY1" : "RELAY2");
    }
    auto const shown = rowsOf(station.command({"show"}, {"--gocbref", "STRANGER"}));
    EXPECT_EQ(shown.at(0)["goose"]["allData"][0]["name"], "LD0/PTRC2.Tr.general");
    auto const selected = rowsOf(station.command({"show"}, {"--ied", "RELAY2"}));
    ASSERT_EQ(selected.size(), 1U);
    EXPECT_EQ(selected[0]["goose"]["gocbRef"], "STRANGER");
}

TEST(NamedStreams, AreNoneOfAControlBlockThatHasAStreamOfItsName) {
    Described const station(relay1AndStranger());
    auto const results = rowsOf({"scl", "check", "--fail-on", "none", "--result", "unexpected",
                                 station.station(), station.capture()});
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0]["gocbRef"], "STRANGER");
    for (Arguments const& selected : {Arguments{}, Arguments{"--gocbref", "STRANGER"}}) {
        auto const row = rowsOf(station.command({"streams"}, selected)).back();
        EXPECT_EQ(row["gocbRef"], "STRANGER");
        EXPECT_TRUE(row["ied"].is_null());
        EXPECT_TRUE(row["controlBlock"].is_null());
    }
    for (auto const* command : {"streams", "packets", "show"}) {
        auto const rows = rowsOf(station.command({command}, {"--ied", "RELAY1"}));
        ASSERT_EQ(rows.size(), 1U) << command;
        Json const& of = rows[0].contains("goose") ? rows[0]["goose"] : rows[0];
        EXPECT_EQ(of["gocbRef"], kGcb1) << command;
    }
}

TEST(NamedStreams, OfOneSvIdHaveAControlBlockEach) {
    std::string const address =
        "<SMV ldInst='LD0' cbName='msv1'><Address><P "
        "type='MAC-Address'>01-0C-CD-04-00-01</P><P "
        "type='APPID'>4000</P></Address></SMV>";
    std::string const twin =
        "<DataSet name='ds4'><FCDA ldInst='LD0' prefix='UnnA' lnClass='TVTR' "
        "lnInst='1' doName='Vol' daName='instMag.f' fc='MX'/></DataSet>";
    std::string const description = replaced(
        replaced(replaced(describedStation(), address, ""), "<DataSet name='ds3'>",
                 twin + "<DataSet name='ds3'>"),
        "<SampledValueControl name='msv1'",
        "<SampledValueControl name='msv0' smvID='MU01' datSet='ds4' confRev='1' smpRate='80' "
        "nofASDU='1'/><SampledValueControl name='msv1'");
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::string const last : {"1", "2"}) {
        capture.add(1'700'000'000, last == "1" ? 0U : 1000U,
                    svFrame(svEthernet().to("01:0c:cd:04:00:0" + last), SvMessage()));
    }
    Described const station(capture.bytes(), description);
    auto const rows = rowsOf(station.command({"streams"}));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["controlBlock"], "MU01LD0/LLN0$MS$msv0");
    EXPECT_EQ(rows[1]["controlBlock"], "MU01LD0/LLN0$MS$msv1");
}

TEST(NamedStreams, AreLookedUpByThemselvesWhileTheyAreFollowed) {
    Described const station(relay1AndStranger());
    auto const rows = rowsOf(station.command({"packets", "-F", "--idle", "10ms"}));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["ied"], "RELAY1");
    EXPECT_EQ(rows[1]["ied"], "RELAY1");
}

TEST(IedOption, SelectsTheStreamsOfAnIed) {
    Described const station(describedTrips());
    for (auto const* command : {"streams", "packets", "show", "events"}) {
        auto const all = rowsOf(station.command({command}));
        auto const some = rowsOf(station.command({command}, {"--ied", "*2"}));
        ASSERT_EQ(some.size(), all.size() / 2) << command;
        std::string const written = some[0].dump();
        EXPECT_NE(written.find("RELAY2LD0"), std::string::npos) << written;
        EXPECT_EQ(written.find("RELAY1LD0/LLN0$GO"), std::string::npos) << written;
    }
    EXPECT_EQ(rowsOf(station.command({"packets"}, {"--ied", "RELAY1", "--ied", "RELAY2"})).size(),
              4U);
}

TEST(IedOption, SaysWhichIedsThereAre) {
    Described const station(describedTrips());
    TempDir const folder;
    for (Arguments const& command : {Arguments{"streams"},
                                     {"packets"},
                                     {"show"},
                                     {"events"},
                                     {"check"},
                                     {"plot", "-o", folder.file("a.svg")},
                                     {"report", "-o", folder.file("a.html")}}) {
        auto const result = runCompanion(station.command(command, {"--ied", "RELAI1"}));
        EXPECT_EQ(result.status, 0) << command[0];
        EXPECT_EQ(result.err, complaint("no stream matches --ied RELAI1; there are RELAY1, RELAY2"))
            << command[0];
    }
}

TEST(IedOption, TakesADescription) {
    Described const station(describedTrips());
    for (auto const* command : {"streams", "packets", "show", "events", "check", "samples"}) {
        expectUsageError({command, "--ied", "RELAY1", station.capture()});
    }
    TempDir const folder;
    expectUsageError({"comtrade", "-o", folder.file("a"), "--ied", "RELAY1", station.capture()});
    expectUsageError({"packets", "-F", "--ied", "RELAY1", station.capture()});
    expectUsageError({"show", "--ied", "RELAY1", station.capture() + "@100"});
}

TEST(SclOption, IsReportedWhereItIsNoDescription) {
    Described const station(describedTrips());
    for (auto const* command : {"streams", "packets", "show", "events", "check"}) {
        auto const result =
            runCompanion({command, "--scl", "missing.scd", "-f", "csv", station.capture()});
        EXPECT_EQ(result.status, 2) << command;
        EXPECT_EQ(result.err, complaint("missing.scd: No such file or directory")) << command;
        EXPECT_GT(linesOf(result.out).size(), command == std::string("check") ? 0U : 2U);
    }
    auto const result =
        runCompanion({"streams", "--scl", station.capture(), "-f", "csv", station.capture()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(linesOf(result.err).size(), 1U) << result.err;
}

TEST(SclOption, TakesAFolderAndSeveralFiles) {
    Described const station(describedTrips());
    std::string const folder = station.station().substr(0, station.station().rfind('/'));
    for (Arguments const& options :
         {Arguments{"--scl", folder}, Arguments{"--scl", station.station(), "--scl", folder}}) {
        auto const rows = rowsOf(joined({"streams"}, joined(options, {station.capture()})));
        EXPECT_EQ(rows.at(0)["ied"], "RELAY1");
    }
}

TEST(NamedPackets, HaveIedAndControlBlockAtTheEnd) {
    Described const station(describedTrips());
    auto const rows = rowsOf(station.command({"packets"}));
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0]["ied"], "RELAY1");
    EXPECT_EQ(rows[1]["ied"], "RELAY2");
    EXPECT_EQ(rows[2]["controlBlock"], kGcb1);
    auto const heading = linesOf(runCompanion(station.command({"packets", "-f", "csv"})).out).at(0);
    EXPECT_TRUE(heading.ends_with(",unreadable,ied,controlBlock")) << heading;
}

TEST(NamedPackets, HaveThemWhileTheyAreFollowed) {
    Described const station(describedTrips());
    auto const rows =
        rowsOf(station.command({"packets", "-F", "--idle", "10ms"}, {"--ied", "RELAY2"}));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["ied"], "RELAY2");
    EXPECT_EQ(rows[1]["controlBlock"], "RELAY2LD0/LLN0$GO$gcb2");
}

TEST(NamedValues, OfAMessageAreShown) {
    Described const station(describedTrips());
    auto const rows = rowsOf(station.command({"show"}, {"--ied", "RELAY1"}));
    ASSERT_EQ(rows.size(), 2U);
    Json const& data = rows[0]["goose"]["allData"];
    EXPECT_EQ(data[0]["name"], kTripName);
    EXPECT_EQ(data[1]["name"], "LD0/PTRC1.Tr.q");
    EXPECT_FALSE(data[2].contains("name"));
    EXPECT_EQ(data[2]["members"][0]["name"], "LD0/PTRC1.Op.general");
    EXPECT_EQ(data[2]["members"][2]["name"], "LD0/PTRC1.Op.t");
    EXPECT_EQ(data[3]["name"], "LD0/MMXU1.A.phsA.cVal.mag.f");
    auto const text = runCompanion(station.command({"show"}, {"--ied", "RELAY1"})).out;
    EXPECT_NE(text.find("\n    1 LD0/PTRC1.Tr.general: boolean: false\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("\n    3: structure\n      1 LD0/PTRC1.Op.general: boolean: false\n"),
              std::string::npos)
        << text;
}

TEST(NamedValues, OfAPacketByItsPlaceAreShown) {
    Described const station(describedTrips());
    auto const place = rowsOf({"packets", station.capture()}).at(2)["position"].dump();
    auto const rows = rowsOf({"show", "--scl", station.station(), station.capture() + "@" + place});
    EXPECT_EQ(rows.at(0)["goose"]["allData"][0]["name"], kTripName);
}

TEST(NamedValues, OfSamplesHaveUnitAndScale) {
    Described const station(describedSamples());
    auto const rows = rowsOf(station.command({"show"}, {"--limit", "5"}));
    Json const& asdu = rows.at(4)["sv"]["asdus"][0];
    ASSERT_EQ(asdu["seqData"].size(), 2U);
    Json const& current = asdu["seqData"][0];
    EXPECT_EQ(current["name"], "LD0/InnATCTR1.Amp.instMag.i");
    EXPECT_EQ(current["unit"], "A");
    EXPECT_TRUE(current["value"].is_number_integer());
    EXPECT_DOUBLE_EQ(current["scaled"].get<double>(), current["value"].get<double>() / 1000);
    Json const& voltage = asdu["seqData"][1];
    EXPECT_EQ(voltage["name"], "LD0/UnnATVTR1.Vol.instMag.f");
    EXPECT_EQ(voltage["unit"], "V");
    EXPECT_EQ(voltage["scaled"], voltage["value"]);
    auto const text = runCompanion(station.command({"show"}, {"--limit", "1"})).out;
    EXPECT_NE(text.find("as described"), std::string::npos) << text;
    EXPECT_NE(text.find("1 LD0/InnATCTR1.Amp.instMag.i: "), std::string::npos) << text;
    EXPECT_NE(text.find(" A), quality: "), std::string::npos) << text;
}

TEST(NamedEvents, HaveNamesOfTheirChanges) {
    Described const station(describedTrips());
    auto const rows = rowsOf(station.command({"events"}));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(changedNames(rows[0]["changes"]),
              (std::vector<std::string>{kTripName, "LD0/PTRC1.Op.general", "LD0/PTRC1.Op.t",
                                        "LD0/MMXU1.A.phsA.cVal.mag.f"}));
    EXPECT_EQ(rows[0]["changes"][1]["member"], "3.1");
    EXPECT_EQ(changedNames(rows[1]["changes"]), std::vector<std::string>{"LD0/PTRC2.Tr.general"});
}

TEST(NamedEvents, HaveIedAndControlBlockAtTheEnd) {
    Described const station(describedTrips());
    auto const rows = rowsOf(station.command({"events"}));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["ied"], "RELAY1");
    EXPECT_EQ(rows[0]["controlBlock"], kGcb1);
    EXPECT_EQ(rows[1]["ied"], "RELAY2");
    auto const heading = linesOf(runCompanion(station.command({"events", "-f", "csv"})).out).at(0);
    EXPECT_TRUE(heading.ends_with(",file,position,ied,controlBlock")) << heading;
    EXPECT_FALSE(rowsOf({"events", station.capture()}).at(0).contains("ied"));
}

TEST(NamedEvents, AreFoundByTheNameOfAMember) {
    Described const station(describedTrips());
    for (auto const* pattern :
         {"PTRC*.Tr.general", "LD0/PTRC?.Tr.general", "RELAY*LD0/PTRC*.Tr.general", "*.Tr.*"}) {
        auto const rows = rowsOf(station.command({"events"}, {"--member", pattern}));
        ASSERT_EQ(rows.size(), 2U) << pattern;
        EXPECT_EQ(changedNames(rows[0]["changes"]), std::vector<std::string>{kTripName}) << pattern;
    }
    for (auto const* pattern : {"PTRC1.Tr.general", "RELAY1LD0/*", "3.*", "*.cVal.mag.f"}) {
        EXPECT_EQ(rowsOf(station.command({"events"}, {"--member", pattern})).size(), 1U) << pattern;
    }
    for (auto const* pattern : {"Tr.general", "PTRC1", "LD1/*", "PTRC1.Tr.q"}) {
        auto const result = runCompanion(station.command({"events"}, {"--member", pattern}));
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.err.find("no such member changed"), std::string::npos) << result.err;
    }
}

TEST(NamedEvents, HaveTheIedInFrontWhereThereAreSeveral) {
    Described const station(describedTrips());
    auto const both = runCompanion(station.command({"events"})).out;
    EXPECT_NE(both.find(" RELAY1LD0/PTRC1.Tr.general: false -> true; RELAY1LD0/PTRC1.Op.general"),
              std::string::npos)
        << both;
    auto const one = runCompanion(station.command({"events"}, {"--ied", "RELAY1"})).out;
    EXPECT_NE(one.find("  LD0/PTRC1.Tr.general: false -> true; "), std::string::npos) << one;
    auto const csv =
        csvRows(runCompanion(station.command({"events", "-f", "csv"}, {"--ied", "RELAY2"})).out);
    EXPECT_EQ(csv.at(0).at("changes"), "1 LD0/PTRC2.Tr.general: false -> true");
}

TEST(NamesEnd, WhereAValueIsOfAnotherType) {
    Described const station(describedTrips(), describedStation("INT32"));
    auto const result = runCompanion(station.command({"show", "-f", "json"}));
    EXPECT_EQ(result.status, 0);
    auto const rows = jsonOf(result.out);
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_TRUE(rows[0]["goose"]["allData"][0]["name"].is_null());
    EXPECT_TRUE(rows[0]["goose"]["allData"][3]["name"].is_null());
    auto const position = rowsOf({"packets", station.capture()}).at(0)["position"].dump();
    auto const notes = linesOf(result.err);
    ASSERT_EQ(notes.size(), 2U) << result.err;
    EXPECT_EQ(notes[0] + "\n",
              complaint(station.capture() + "@" + position + ": " + kGcb1 +
                        ": value 1 is of type boolean, described as INT32 LD0/PTRC1.Tr.general: no "
                        "names from there on"));
}

TEST(NamesEnd, AfterThoseThatAgree) {
    GooseMessage fewer = relay1Message(1, false);
    fewer.setData({dataBoolean(true), dataQuality()});
    GooseMessage more = relay1Message(2, false);
    more.setData({dataBoolean(true), dataQuality(),
                  dataStructure({dataBoolean(true), dataQuality(), dataUtcTime(1)}), dataFloat(1),
                  dataBoolean(false)});
    for (auto const& [message, note] :
         {std::pair(fewer, "there is no value 3"), std::pair(more, "value 5 is not described")}) {
        CaptureBuilder capture(CaptureVariant::nanoLittle);
        capture.add(1'700'000'000, 0, gooseFrame(Ethernet(), message));
        capture.add(1'700'000'001, 0, gooseFrame(Ethernet(), message));
        Described const station(capture.bytes());
        auto const result = runCompanion(station.command({"show", "-f", "json"}));
        EXPECT_EQ(linesOf(result.err).size(), 1U) << result.err;
        EXPECT_NE(result.err.find(note), std::string::npos) << result.err;
        Json const data = jsonOf(result.out).at(1)["goose"]["allData"];
        EXPECT_EQ(data[0]["name"], kTripName);
        EXPECT_EQ(data[1]["name"], "LD0/PTRC1.Tr.q");
        EXPECT_TRUE(data.size() == 2 || data[4]["name"].is_null());
    }
}

TEST(NamesEnd, AndBeginAgainWhereAMessageIsAsDescribed) {
    GooseMessage other = relay1Message(2, false);
    other.setData({dataInteger(5)});
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    std::uint32_t second = 1'700'000'000;
    for (GooseMessage const& message :
         {relay1Message(1, false), other, relay1Message(3, false), relay1Message(4, true)}) {
        capture.add(second++, 0, gooseFrame(Ethernet(), message));
    }
    Described const station(capture.bytes());
    auto const result = runCompanion(station.command({"events", "-f", "json"}));
    EXPECT_EQ(linesOf(result.err).size(), 1U) << result.err;
    auto const rows = jsonOf(result.out);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_TRUE(rows[0]["changes"][0]["name"].is_null());
    EXPECT_EQ(rows[1]["changes"][0]["name"], kTripName);
    EXPECT_EQ(rows[2]["changes"][0]["name"], kTripName);
}

TEST(NamedFindings, TellTheMember) {
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    std::uint32_t second = 1'700'000'000;
    std::uint32_t stNum = 1;
    for (std::uint16_t const quality : std::vector<std::uint16_t>{0x0000, 0x4000, 0x4000}) {
        capture.add(second++, 0, gooseFrame(Ethernet(), relay1Message(stNum++, false, quality)));
    }
    Described const station(capture.bytes());
    for (Arguments const& words :
         {Arguments{"check", "--fail-on", "none"},
          Arguments{"check", "--fail-on", "none", "-F", "--idle", "10ms"}}) {
        auto const rows = rowsOf(station.command(words, {"--kind", "qualityChanged"}));
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0]["ied"], "RELAY1");
        EXPECT_EQ(rows[0]["controlBlock"], kGcb1);
        EXPECT_EQ(rows[0]["name"], "LD0/PTRC1.Tr.q");
        EXPECT_EQ(rows[0]["text"],
                  "quality of member 2 (LD0/PTRC1.Tr.q) went from good to invalid");
    }
    auto const plain =
        rowsOf({"check", "--fail-on", "none", "--kind", "qualityChanged", station.capture()});
    EXPECT_EQ(plain.at(0)["text"], "quality of member 2 went from good to invalid");
    EXPECT_FALSE(plain[0].contains("name"));
}

TEST(NamedFindings, AreOfQualitiesWhereTheDescriptionHasThem) {
    // A current in two octets: nothing but the description tells where its quality is.
    std::string const description =
        replaced(describedStation(), "name='i' bType='INT32'", "name='i' bType='INT16'");
    constexpr std::size_t kSize = 2 + 4 + 4 + 4;
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::uint16_t number = 0; number < 40; ++number) {
        SvMessage message;
        message.asdus.front().smpCnt = number;
        Bytes data(kSize);
        data[5] = number >= 20 ? 1 : 0;
        message.asdus.front().seqData = data;
        capture.add(1'700'000'000, number * 250'000U,
                    svFrame(svEthernet().to("01:0c:cd:04:00:01"), message));
    }
    Described const station(capture.bytes(), description);
    for (Arguments const& words :
         {Arguments{"check"}, Arguments{"check", "-F", "--idle", "10ms"}}) {
        auto const rows = rowsOf(
            station.command(joined(words, {"--fail-on", "none"}), {"--kind", "qualityChanged"}));
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0]["name"], "LD0/InnATCTR1.Amp.instMag.i");
    }
    EXPECT_EQ(rowsOf({"check", "--fail-on", "none", "--kind", "qualityChanged", station.capture()})
                  .size(),
              0U);
}

TEST(NamedFindings, AreSelectedByIed) {
    Described const station(describedTrips());
    auto const all = rowsOf(station.command({"check", "--fail-on", "none", "--summary"}));
    EXPECT_EQ(all.size(), 2U);
    auto const some =
        rowsOf(station.command({"check", "--fail-on", "none", "--summary"}, {"--ied", "RELAY2"}));
    ASSERT_EQ(some.size(), 1U);
    EXPECT_EQ(some[0]["gocbRef"], "RELAY2LD0/LLN0$GO$gcb2");
}

}  // namespace
}  // namespace TalTest::NamesTest
