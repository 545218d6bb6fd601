#include <gtest/gtest.h>

#include <TalIec61850Scl/read/ReadStation.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "scl/SclText.hpp"

namespace TalTest::HostileDescriptionsTest {
namespace {

using namespace TalIec61850Scl;
using TalTest::SclText;

std::string repeated(std::string const& text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

std::string const kNode = "<LN lnClass='AAAA' inst='1' lnType='A'/>";

std::string fcdaOfObject(std::string const& object) {
    return "<FCDA ldInst='LD0' lnClass='AAAA' lnInst='1' doName='" + object + "' fc='ST'/>\n";
}

bool has(StationDescription const& station, DiagnosticCode code) {
    return std::any_of(station.diagnostics.begin(), station.diagnostics.end(),
                       [&](Diagnostic const& each) { return each.code == code; });
}

TEST(HostileScl, EntitiesAreNotExpanded) {
    std::string text = "<!DOCTYPE SCL [<!ENTITY a 'aaaaaaaaaa'>";
    for (char name = 'b'; name <= 'z'; ++name) {
        std::string const before(1, static_cast<char>(name - 1));
        text += "<!ENTITY " + std::string(1, name) + " '" + repeated("&" + before + ";", 10) + "'>";
    }
    text += "]><SCL><IED name='&z;'/></SCL>";
    EXPECT_EQ(readStation(text, "").ieds, std::vector<std::string>{"&z;"});
}

TEST(HostileScl, OpenTagsWithoutEndAreToldAndNestNothing) {
    auto const station = readStation("<SCL>" + repeated("<IED name='a'>", 200'000), "");
    EXPECT_TRUE(has(station, DiagnosticCode::notXml));
    EXPECT_EQ(station.ieds.size(), 1U);
    EXPECT_TRUE(has(readStation(repeated("<a>", 1'000'000), ""), DiagnosticCode::notXml));
}

TEST(HostileScl, TypesThatHoldTheNextOneTwiceEndAtTheLimitOfMembers) {
    SclText file;
    file.ieds = TalTest::iedText(
        "IED1",
        TalTest::node0Text(TalTest::gooseText(fcdaOfObject("X") + fcdaOfObject("Y"))) + kNode);
    file.templates =
        "<LNodeType id='A'><DO name='X' type='T20'/><DO name='Y' type='T40'/></LNodeType>"
        "<DOType id='T0'><DA name='v' bType='INT8' fc='ST'/></DOType>";
    for (int i = 1; i <= 40; ++i) {
        std::string const inner = "T" + std::to_string(i - 1);
        file.templates += "<DOType id='T" + std::to_string(i) + "'><SDO name='a' type='" + inner +
                          "'/><SDO name='b' type='" + inner + "'/></DOType>";
    }
    auto const station = readStation(file.text(), "");
    EXPECT_TRUE(has(station, DiagnosticCode::tooManyMembers));
    EXPECT_EQ(station.dataSets.at(0).members.size(), 32'768U);
    EXPECT_EQ(station.dataSets[0].entries, 2U);
}

TEST(HostileScl, TypesThatHoldNothingTakeNoTime) {
    SclText file;
    file.ieds =
        TalTest::iedText("IED1", TalTest::node0Text(TalTest::gooseText(fcdaOfObject("X"))) + kNode);
    file.templates = "<LNodeType id='A'><DO name='X' type='T20'/></LNodeType><DOType id='T0'/>";
    for (int i = 1; i <= 20; ++i) {
        file.templates += "<DOType id='T" + std::to_string(i) + "'>" +
                          repeated("<SDO name='a' type='T" + std::to_string(i - 1) + "'/>", 100) +
                          "</DOType>";
    }
    auto const station = readStation(file.text(), "");
    EXPECT_TRUE(has(station, DiagnosticCode::badFcda));
}

TEST(HostileScl, ChainsOfTypesAreCutWhereverTheyAreEntered) {
    SclText file;
    std::string fcdas;
    file.templates = "<LNodeType id='A'>";
    constexpr int kTypes = 5000;
    for (int i = kTypes; i > 0; --i) {
        std::string const number = std::to_string(i);
        file.templates += "<DO name='X" + number + "' type='T" + number + "'/>";
        fcdas += fcdaOfObject("X" + number);
    }
    file.templates += "</LNodeType>";
    for (int i = 1; i <= kTypes; ++i) {
        file.templates += "<DOType id='T" + std::to_string(i) + "'><SDO name='s' type='T" +
                          std::to_string(i + 1) + "'/><DA name='v' bType='INT8' fc='ST'/></DOType>";
    }
    file.ieds = TalTest::iedText("IED1", TalTest::node0Text(TalTest::gooseText(fcdas)) + kNode);
    auto const station = readStation(file.text(), "");
    EXPECT_TRUE(has(station, DiagnosticCode::nestingTooDeep));
    for (DataSetMember const& member : station.dataSets.at(0).members) {
        ASSERT_LE(member.path.size(), 26U);
    }
}

TEST(HostileScl, ArraysOfAnySizeEndAtTheLimitOfMembers) {
    SclText file;
    file.ieds =
        TalTest::iedText("IED1", TalTest::node0Text(TalTest::gooseText(fcdaOfObject("X"))) + kNode);
    file.templates =
        "<LNodeType id='A'><DO name='X' type='T'/></LNodeType><DOType id='T'>"
        "<SDO name='s' type='U' count='4294967295'/></DOType>"
        "<DOType id='U'><DA name='v' bType='INT8' fc='ST' count='4294967295'/></DOType>";
    auto const station = readStation(file.text(), "");
    EXPECT_TRUE(has(station, DiagnosticCode::tooManyMembers));
    EXPECT_EQ(station.dataSets.at(0).members.size(), 32'768U);
}

TEST(HostileScl, AMillionMembersThatLeadToNothingAreBounded) {
    SclText file;
    file.ieds =
        TalTest::iedText("IED1", TalTest::node0Text(TalTest::gooseText(repeated(
                                     "<FCDA ldInst='LD0' lnClass='AAAA' fc='ST'/>", 1'000'000))));
    auto const station = readStation(file.text(), "");
    EXPECT_EQ(station.dataSets.at(0).entries, 1'000'000U);
    EXPECT_EQ(station.dataSets[0].members.size(), 32'768U);
    EXPECT_TRUE(has(station, DiagnosticCode::tooManyMembers));
    EXPECT_LE(station.diagnostics.size(), 1001U);
}

TEST(HostileScl, DataSetsOfLargeTypesDoNotMultiply) {
    // Each data set asks for 30,000 members in some 150 octets.
    SclText file;
    std::string control;
    for (int i = 0; i < 2000; ++i) {
        std::string const name = std::to_string(i);
        control += "<DataSet name='" + name + "'>" + fcdaOfObject("X") +
                   "</DataSet><GSEControl name='" + name + "' appID='a' datSet='" + name + "'/>\n";
    }
    file.ieds = TalTest::iedText("IED1", TalTest::node0Text(control) + kNode);
    file.templates =
        "<LNodeType id='A'><DO name='X' type='T'/></LNodeType><DOType id='T'>"
        "<DA name='v' bType='INT8' fc='ST' count='30000'/></DOType>";
    auto const station = readStation(file.text(), "");
    EXPECT_TRUE(has(station, DiagnosticCode::tooManyMembers));
    EXPECT_EQ(station.controlBlocks.size(), 2000U);
    std::size_t members = 0;
    for (DataSet const& dataSet : station.dataSets) {
        members += dataSet.members.size();
    }
    EXPECT_LT(members, 1'000'000U);
}

TEST(HostileScl, NamesAndTextsOfAnySizeAreCut) {
    std::string const name(1'000'000, 'n');
    SclText file;
    file.ieds = TalTest::iedText(
        name, TalTest::node0Text("<GSEControl name='" + name + "' appID='" + name + "' desc='" +
                                 repeated("\xC3\xA4", 1'000'000) + "'/>"));
    auto const station = readStation(file.text(), "");
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].name.size(), 255U);
    EXPECT_EQ(station.controlBlocks[0].ied.size(), 255U);
    EXPECT_EQ(station.controlBlocks[0].desc, repeated("\xC3\xA4", 511));
}

/// Octets of what is said of members.
std::size_t octetsOf(std::vector<DataSet> const& dataSets) {
    std::size_t octets = 0;
    for (DataSet const& dataSet : dataSets) {
        for (DataSetMember const& member : dataSet.members) {
            octets += sizeof member + member.name.size() + member.bType.size() +
                      member.unit.size() + member.desc.size();
        }
    }
    return octets;
}

TEST(HostileScl, LongBasicTypesDoNotMultiply) {
    SclText file;
    std::string control;
    for (int i = 0; i < 30; ++i) {
        std::string const name = std::to_string(i);
        control += "<DataSet name='" + name + "'>" + fcdaOfObject("X") +
                   "</DataSet><GSEControl name='" + name + "' appID='a' datSet='" + name + "'/>\n";
    }
    file.ieds = TalTest::iedText("IED1", TalTest::node0Text(control) + kNode);
    file.templates =
        "<LNodeType id='A'><DO name='X' type='T'/></LNodeType><DOType id='T'><DA "
        "name='v' bType='" +
        std::string(255, 'b') + "' fc='ST' count='30000'/></DOType>";
    std::string const text = file.text();
    EXPECT_LE(octetsOf(readStation(text, "").dataSets), (32U << 20U) + 16 * text.size());
}

TEST(HostileScl, NamesThatControlBlocksShareDoNotMultiply) {
    std::string const name(255, 'n');
    SclText file;
    std::string control;
    constexpr int kMany = 50'000;
    for (int i = 0; i < kMany; ++i) {
        control += "<GSEControl name='" + std::to_string(i) + "' appID='a'/>";
    }
    file.ieds = TalTest::iedText(name, "<LN prefix='" + name + "' lnClass='" + name + "' inst='" +
                                           name + "'>" + control + "</LN>");
    auto const station = readStation(file.text(), "");
    EXPECT_TRUE(has(station, DiagnosticCode::memoryLimit));
    EXPECT_EQ(station.diagnostics.size(), 1U);
    EXPECT_GT(station.controlBlocks.size(), 1000U);
    EXPECT_LT(station.controlBlocks.size(), static_cast<std::size_t>(kMany) / 2);
}

TEST(HostileScl, SubscribersOfManyControlBlocksDoNotMultiply) {
    std::string const name(255, 'n');
    constexpr int kInputs = 10'000;
    SclText file;
    std::string control = "<DataSet name='d'>" + fcdaOfObject("X") + "</DataSet>";
    for (int i = 0; i < 16; ++i) {
        control += "<GSEControl name='" + std::to_string(i) + "' appID='a' datSet='d'/>";
    }
    file.ieds =
        TalTest::iedText("I", TalTest::node0Text(control) + kNode) +
        TalTest::iedText(
            name, "<LN prefix='" + name + "' lnClass='" + name + "' inst='" + name + "'><Inputs>" +
                      repeated("<ExtRef iedName='I' ldInst='LD0' lnClass='AAAA' lnInst='1' "
                               "doName='X'/>",
                               kInputs) +
                      "</Inputs></LN>");
    file.templates =
        "<LNodeType id='A'><DO name='X' type='T'/></LNodeType>"
        "<DOType id='T'><DA name='v' bType='INT8' fc='ST'/></DOType>";
    std::string const text = file.text();
    auto const station = readStation(text, "");
    ASSERT_EQ(station.diagnostics.size(), 1U);
    EXPECT_EQ(nameOf(station.diagnostics[0].code), "MemoryLimit");
    EXPECT_EQ(station.diagnostics[0].subject, "ExtRef");
    std::size_t octets = 0;
    for (ControlBlock const& block : station.controlBlocks) {
        for (Subscriber const& subscriber : block.subscribers) {
            octets += sizeof subscriber + subscriber.ied.size() + subscriber.node.size();
        }
    }
    EXPECT_GT(octets, 1'000'000U);
    EXPECT_LE(octets, (32U << 20U) + 16 * text.size());
}

TEST(HostileScl, WhatElementsHoldOfNoMeaningIsNotGoneOverForEachValue) {
    // 30,000 values of an array, each of an object whose text is asked for.
    std::string const nothing = repeated("<x/>", 300'000);
    std::string attributes;
    for (int i = 0; i < 100'000; ++i) {
        attributes += " a" + std::to_string(i) + "=''";
    }
    SclText file;
    file.ieds = TalTest::iedText(
        "IED1", TalTest::node0Text(TalTest::gooseText(fcdaOfObject("X"))) +
                    "<LN lnClass='AAAA' inst='1' lnType='A'><DOI name='X'><SDI name='a'" +
                    attributes + "><DAI name='dU'>" + nothing + "</DAI></SDI></DOI></LN>");
    file.templates =
        "<LNodeType id='A'><DO name='X' type='A'/></LNodeType>"
        "<DOType id='A'><SDO name='a' type='B' count='30000'/></DOType>"
        "<DOType id='B'><SDO name='s' type='C'/></DOType>"
        "<DOType id='C'><DA name='v' bType='INT8' fc='ST'/><DA name='dU' bType='Unicode255' "
        "fc='DC'>" +
        nothing + "</DA></DOType>";
    auto const station = readStation(file.text(), "");
    EXPECT_TRUE(station.diagnostics.empty());
    EXPECT_EQ(station.dataSets.at(0).members.size(), 30'000U);
}

TEST(HostileScl, ManyOfOneNameAreFoundInLinearTime) {
    // 20,000 control blocks look for their data set among 20,000 others, and their values among as
    // many instances.
    constexpr int kMany = 20'000;
    SclText file;
    std::string control;
    std::string instances;
    std::string inputs;
    for (int i = 0; i < kMany; ++i) {
        std::string const name = std::to_string(i);
        control += "<DataSet name='" + name + "'>" + fcdaOfObject("X" + name) +
                   "</DataSet><GSEControl name='" + name + "' appID='a' datSet='" + name + "'/>";
        instances += "<DOI name='X" + name + "' desc='" + name + "'/>";
        file.templates += "<DO name='X" + name + "' type='T'/>";
        inputs += "<ExtRef iedName='IED1' ldInst='LD0' lnClass='AAAA' lnInst='1' doName='X" + name +
                  "'/>";
    }
    file.templates = "<LNodeType id='A'>" + file.templates +
                     "</LNodeType><DOType id='T'><DA name='v' bType='INT8' fc='ST'/></DOType>";
    file.ieds = TalTest::iedText(
        "IED1", TalTest::node0Text(control + "<Inputs>" + inputs + "</Inputs>") +
                    "<LN lnClass='AAAA' inst='1' lnType='A'>" + instances + "</LN>");
    auto const station = readStation(file.text(), "");
    ASSERT_EQ(station.controlBlocks.size(), static_cast<std::size_t>(kMany));
    EXPECT_EQ(station.dataSets.back().members.at(0).desc, std::to_string(kMany - 1));
    EXPECT_EQ(station.controlBlocks.back().subscribers.size(), 1U);
    EXPECT_TRUE(station.diagnostics.empty());
}

TEST(HostileScl, TheSameAddressAndControlBlockManyTimesAreToldOnce) {
    SclText file;
    file.communication = "<SubNetwork name='N'><ConnectedAP iedName='IED1' apName='AP1'>" +
                         repeated("<GSE ldInst='LD0' cbName='g'/>", 20'000) +
                         "</ConnectedAP></SubNetwork>";
    file.ieds = TalTest::iedText(
        "IED1", TalTest::node0Text(repeated("<GSEControl name='g' appID='a'/>", 20'000)));
    auto const station = readStation(file.text(), "");
    EXPECT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_TRUE(station.diagnostics.empty());
}

}  // namespace
}  // namespace TalTest::HostileDescriptionsTest
