#include <gtest/gtest.h>

#include <TalIec61850Scl/read/ReadStation.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "scl/SclText.hpp"

namespace TalTest::DiagnosticsTest {
namespace {

using namespace TalIec61850Scl;
using TalTest::SclText;

/// Code and subject of each diagnostic.
std::vector<std::string> told(StationDescription const& station) {
    std::vector<std::string> texts;
    for (Diagnostic const& each : station.diagnostics) {
        texts.push_back(std::string(nameOf(each.code)) + " " + each.subject);
    }
    return texts;
}

using Told = std::vector<std::string>;

std::string fcdaOf(std::string const& lnClass, std::string const& object) {
    return "<FCDA ldInst='LD0' lnClass='" + lnClass + "' lnInst='1' doName='" + object +
           "' fc='ST'/>\n";
}

TEST(SclDiagnostics, HaveNamesOfTheirOwn) {
    std::set<std::string_view> names;
    for (int code = 0; code <= static_cast<int>(DiagnosticCode::unreadableFile); ++code) {
        names.insert(nameOf(static_cast<DiagnosticCode>(code)));
    }
    EXPECT_EQ(names.size(), static_cast<std::size_t>(DiagnosticCode::unreadableFile) + 1);
    EXPECT_FALSE(names.contains(""));
    EXPECT_EQ(nameOf(DiagnosticCode::missingLNodeType), "MissingLNodeType");
}

TEST(SclDiagnostics, SayFromWhichLineOnAFileIsNoXml) {
    SclText file;
    file.ieds = TalTest::iedText("IED1", TalTest::node0Text(TalTest::gooseText("")));
    std::string const text = file.text();
    std::string const broken = text.substr(0, text.find("<DataTypeTemplates>")) + "\n<oops <<\n";
    auto const station = readStation(broken, "");
    ASSERT_EQ(told(station), (Told{"NotXml "}));
    EXPECT_EQ(station.diagnostics[0].place.line, 14U);
    EXPECT_EQ(station.controlBlocks.size(), 1U) << "what comes before is read";
}

TEST(SclDiagnostics, SayThatAFileIsNoDescription) {
    EXPECT_EQ(told(readStation("<html/>", "")), (Told{"NotScl html"}));
    EXPECT_EQ(told(readStation("", "")), (Told{"NotXml "}));
    EXPECT_EQ(told(readStation("This is no XML.", "")), (Told{"NotXml "}));
    EXPECT_TRUE(readStation("<SCL/>", "").diagnostics.empty());
}

TEST(SclDiagnostics, SayWhichTypesAreMissingOnceEach) {
    SclText file;
    std::string const fcdas = fcdaOf("AAAA", "X") + fcdaOf("AAAA", "Y") + fcdaOf("BBBB", "X") +
                              fcdaOf("BBBB", "Y") + fcdaOf("BBBB", "Z");
    file.ieds = TalTest::iedText("IED1", TalTest::node0Text(TalTest::gooseText(fcdas)) +
                                             "<LN lnClass='AAAA' inst='1' lnType='none'/>"
                                             "<LN lnClass='BBBB' inst='1' lnType='some'/>");
    file.templates =
        "<LNodeType id='some' lnClass='BBBB'><DO name='X' type='noDO'/><DO name='Y' type='noDO'/>"
        "<DO name='Z' type='Z'/></LNodeType>"
        "<DOType id='Z'><DA name='a' bType='Struct' type='noDA' fc='ST'/>"
        "<SDO name='s' type='noSDO'/><DA name='b' bType='BOOLEAN' fc='ST'/></DOType>";
    auto const station = readStation(file.text(), "");
    auto const texts = told(station);
    EXPECT_EQ(texts.size(), 4U);
    std::set<std::string> const all(texts.begin(), texts.end());
    EXPECT_EQ(all, (std::set<std::string>{"MissingLNodeType none", "MissingDOType noDO",
                                          "MissingDAType noDA", "MissingDOType noSDO"}));
    std::vector<std::string> members;
    for (DataSetMember const& member : station.dataSets.at(0).members) {
        members.push_back(member.name + " " + member.bType);
    }
    EXPECT_EQ(members, (std::vector<std::string>{"LD0/AAAA1.X ", "LD0/AAAA1.Y ", "LD0/BBBB1.X ",
                                                 "LD0/BBBB1.Y ", "LD0/BBBB1.Z.a ", "LD0/BBBB1.Z.s ",
                                                 "LD0/BBBB1.Z.b BOOLEAN"}));
}

TEST(SclDiagnostics, SayWhatAttributesAreMissingOrNoNumbers) {
    SclText file;
    file.ieds = TalTest::iedText(
        "IED1",
        TalTest::node0Text("<DataSet name='d'><FCDA ldInst='LD0' lnClass='LLN0' doName='M'/>"
                           "</DataSet>\n<GSEControl name='g' datSet='d' confRev='x'/>\n"
                           "<GSEControl appID='i' datSet='none' confRev='-1'/>\n"
                           "<SampledValueControl name='s' smvID='s' smpRate='1.5' "
                           "nofASDU='4294967296'/>\n"));
    auto const station = readStation(file.text(), "");
    EXPECT_EQ(told(station),
              (Told{"MissingAttribute fc", "MissingAttribute appID", "BadNumber x",
                    "MissingAttribute name", "BadNumber -1", "MissingDataSet IED1LD0/LLN0$none",
                    "BadNumber 1.5", "BadNumber 4294967296"}));
    EXPECT_EQ(station.controlBlocks[1].dataSetReference, "IED1LD0/LLN0$none");
    EXPECT_FALSE(station.controlBlocks[1].dataSet);
    EXPECT_FALSE(station.controlBlocks[0].confRev);
}

/// What is told of a DOType of these parts, which a data set uses.
Told toldOfParts(std::string const& parts, std::string const& others = "") {
    SclText file;
    file.ieds =
        TalTest::iedText("IED1", TalTest::node0Text(TalTest::gooseText(fcdaOf("AAAA", "X"))) +
                                     "<LN lnClass='AAAA' inst='1' lnType='A'/>");
    file.templates =
        "<LNodeType id='A' lnClass='AAAA'><DO name='X' type='X'/></LNodeType>"
        "<DOType id='X'><DA name='v' bType='INT8' fc='ST'/>" +
        parts + "</DOType>" + others;
    return told(readStation(file.text(), ""));
}

TEST(SclDiagnostics, SayWhatPartsOfATypeLack) {
    EXPECT_EQ(toldOfParts("<DA name='q' bType='Quality'/>"), (Told{"MissingAttribute fc"}));
    EXPECT_EQ(toldOfParts("<DA name='q' bType='Quality' fc='XX'/>"), (Told{"MissingAttribute fc"}));
    EXPECT_EQ(toldOfParts("<DA bType='Quality' fc='ST'/>"), (Told{"MissingAttribute name"}));
    EXPECT_EQ(toldOfParts("<SDO type='X2'/>", "<DOType id='X2'/>"),
              (Told{"MissingAttribute name"}));
    EXPECT_EQ(toldOfParts("", "<DOType/>"), (Told{"MissingAttribute id"}));
    EXPECT_EQ(toldOfParts("<DA name='s' bType='Struct' type='S' fc='ST'/>",
                          "<DAType id='S'><BDA bType='INT8'/></DAType>"),
              (Told{"MissingAttribute name"}));
}

TEST(SclDiagnostics, SayWhichBasicTypesThereAreNotOnceEach) {
    EXPECT_EQ(toldOfParts("<DA name='a' bType='Bool' fc='ST'/><DA name='b' bType='INT32 ' "
                          "fc='ST'/><DA name='c' bType='Bool' fc='ST'/>"),
              (Told{"UnknownBType Bool", "UnknownBType INT32 "}));
    EXPECT_EQ(toldOfParts("<DA name='a' bType='PhyComAddr' fc='ST'/>"), Told{});
}

TEST(SclDiagnostics, SayWhichTypesAreThereTwice) {
    EXPECT_EQ(toldOfParts("", "<DOType id='X'/>"), (Told{"DuplicateType X"}));
    EXPECT_EQ(toldOfParts("", "<DAType id='X'/><EnumType id='X'/>"), Told{}) << "other kinds";
    EXPECT_EQ(toldOfParts("", "<EnumType id='E'/><EnumType id='E'/>"), (Told{"DuplicateType E"}));
    EXPECT_EQ(toldOfParts("", "<LNodeType id='A' lnClass='BBBB'/>"), Told{}) << "of another class";
    EXPECT_EQ(toldOfParts("",
                          "<LNodeType id='A' lnClass='BBBB'/><LNodeType id='A' lnClass='BBBB'/>"
                          "<LNodeType id='A' lnClass='AAAA'/>"),
              (Told{"DuplicateType A", "DuplicateType A"}));
}

TEST(SclDiagnostics, SayWhatClassesAreMissing) {
    SclText file;
    file.ieds = TalTest::iedText(
        "IED1",
        "<LN0 inst='' lnType='L'><DataSet name='d'><FCDA ldInst='LD0' lnClass='LLN0' "
        "doName='Mod' fc='ST'/></DataSet><GSEControl name='gcb' appID='g' datSet='d'/>"
        "</LN0><LN inst='1' lnType='L'/>");
    file.templates =
        "<LNodeType id='L' lnClass='LLN0'><DO name='Mod' type='M'/></LNodeType>"
        "<DOType id='M'><DA name='v' bType='INT8' fc='ST'/></DOType>";
    auto const station = readStation(file.text(), "");
    EXPECT_EQ(told(station), (Told{"MissingAttribute lnClass", "MissingAttribute lnClass"}));
    EXPECT_EQ(station.controlBlocks.at(0).reference, "IED1LD0/LLN0$GO$gcb");
    EXPECT_EQ(station.dataSets.at(0).members.at(0).name, "LD0/LLN0.Mod.v");
}

TEST(SclDiagnostics, SayWhichAddressesAreOfNothing) {
    SclText file;
    file.ieds = TalTest::iedText("IED1", TalTest::node0Text("<GSEControl name='g' appID='i'/>"));
    file.communication =
        "<SubNetwork name='N'><ConnectedAP iedName='IED1' apName='AP1'>"
        "<GSE ldInst='LD0' cbName='g'/>\n<GSE ldInst='LD0' cbName='h'/>\n"
        "<SMV ldInst='LD0' cbName='g'/></ConnectedAP>\n"
        "<ConnectedAP iedName='IED7' apName='AP1'><GSE ldInst='LD0' cbName='g'/></ConnectedAP>"
        "</SubNetwork>";
    EXPECT_EQ(told(readStation(file.text(), "")),
              (Told{"MissingControlBlock IED1LD0/h", "MissingControlBlock IED1LD0/g",
                    "MissingIed IED7"}));
}

TEST(SclDiagnostics, SayThatAControlBlockIsThereTwice) {
    SclText file;
    file.ieds =
        TalTest::iedText("IED1", TalTest::node0Text("<GSEControl name='g' appID='first'/>"
                                                    "<GSEControl name='g' appID='other'/>"));
    auto const station = readStation(file.text(), "");
    EXPECT_EQ(told(station), (Told{"DuplicateControlBlock IED1LD0/LLN0$GO$g"}));
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].id, "first");
}

TEST(SclDiagnostics, SayThatTypesAreNestedTooDeep) {
    SclText file;
    file.ieds = TalTest::iedText(
        "IED1",
        TalTest::node0Text(TalTest::gooseText(fcdaOf("AAAA", "Self") + fcdaOf("AAAA", "Ring"))) +
            "<LN lnClass='AAAA' inst='1' lnType='A'/>");
    file.templates =
        "<LNodeType id='A' lnClass='AAAA'><DO name='Self' type='S'/><DO name='Ring' type='R1'/>"
        "</LNodeType><DOType id='S'><DA name='a' bType='INT8' fc='ST'/><SDO name='s' "
        "type='S'/></DOType>"
        "<DOType id='R1'><SDO name='r' type='R2'/></DOType>"
        "<DOType id='R2'><SDO name='r' type='R3'/></DOType>"
        "<DOType id='R3'><SDO name='r' type='R1'/></DOType>";
    auto const station = readStation(file.text(), "");
    EXPECT_EQ(told(station), (Told{"NestingTooDeep S", "NestingTooDeep R1"}));
    auto const& members = station.dataSets.at(0).members;
    ASSERT_EQ(members.size(), 3U);
    EXPECT_EQ(members[0].name, "LD0/AAAA1.Self.a");
    EXPECT_EQ(members[1].name, "LD0/AAAA1.Self.s");
    EXPECT_EQ(members[1].type, BasicType::unknown);
    EXPECT_EQ(members[2].name, "LD0/AAAA1.Ring.r.r.r");
}

TEST(SclDiagnostics, AreInTheOrderOfLines) {
    SclText file;
    file.communication = "<SubNetwork><ConnectedAP iedName='none' apName='x'/></SubNetwork>\n";
    file.ieds =
        TalTest::iedText("IED1", TalTest::node0Text(TalTest::gooseText(fcdaOf("ZZZZ", "X"))));
    auto const station = readStation(file.text(), "");
    EXPECT_EQ(told(station), (Told{"MissingIed none", "BadFcda LD0/ZZZZ1.X"}));
    EXPECT_EQ(station.diagnostics[0].place.line, 4U);
    EXPECT_EQ(station.diagnostics[1].place.line, 10U);
}

}  // namespace
}  // namespace TalTest::DiagnosticsTest
