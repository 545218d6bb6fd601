// Descriptions as files have them, and captures built to match: every name at its place, and a
// difference of each kind where one attribute of the file is another.

#include <gtest/gtest.h>

#include <variant>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"
#include "support/SclAccess.hpp"

namespace TalTest::CheckDescriptionTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::DataView;
using TalIec61850Analysis::DataViews;
using TalIec61850Analysis::viewGoose;
using Path = std::vector<std::uint32_t>;

/// A relay that sends GOOSE, and a merging unit.
std::string const kStation = R"(<?xml version="1.0" encoding="UTF-8"?>
<SCL xmlns="http://www.iec.ch/61850/2003/SCL" version="2007" revision="B">
  <Header id="station"/>
  <Communication>
    <SubNetwork name="station" type="8-MMS">
)" + textOf(accessOfRelay1()) +
                             textOf(accessOfMu1()) +
                             R"(    </SubNetwork>
  </Communication>
  <IED name="RELAY1">
    <AccessPoint name="AP1">
      <Server>
        <LDevice inst="LD0">
          <LN0 lnClass="LLN0" inst="" lnType="LLN0">
            <DataSet name="dataSet1">
              <FCDA ldInst="LD0" lnClass="PTRC" lnInst="1" doName="Tr" daName="general" fc="ST"/>
              <FCDA ldInst="LD0" lnClass="PTRC" lnInst="1" doName="Tr" daName="q" fc="ST"/>
              <FCDA ldInst="LD0" prefix="Q0" lnClass="XCBR" lnInst="1" doName="Pos" fc="ST"/>
              <FCDA ldInst="LD0" lnClass="MMXU" lnInst="1" doName="A.phsA" daName="cVal.mag.f"
                  fc="MX"/>
              <FCDA ldInst="LD0" lnClass="MMXU" lnInst="1" doName="A" fc="MX"/>
              <FCDA ldInst="LD0" lnClass="PTRC" lnInst="1" doName="Mod" daName="stVal" fc="ST"/>
            </DataSet>
            <GSEControl name="gcb1" datSet="dataSet1" confRev="1" appID="RELAY1_gcb1"/>
          </LN0>
          <LN lnClass="PTRC" inst="1" lnType="PTRC"/>
          <LN prefix="Q0" lnClass="XCBR" inst="1" lnType="XCBR"/>
          <LN lnClass="MMXU" inst="1" lnType="MMXU"/>
        </LDevice>
      </Server>
    </AccessPoint>
  </IED>
  <IED name="MU1">
    <AccessPoint name="AP1">
      <Server>
        <LDevice inst="LD0">
          <LN0 lnClass="LLN0" inst="" lnType="LLN0">
            <DataSet name="PhsMeas1">
              <FCDA ldInst="LD0" prefix="I01" lnClass="TCTR" lnInst="1" doName="Amp" fc="MX"/>
              <FCDA ldInst="LD0" prefix="I01" lnClass="TCTR" lnInst="2" doName="Amp"
                  daName="instMag.i" fc="MX"/>
              <FCDA ldInst="LD0" prefix="I01" lnClass="TCTR" lnInst="2" doName="Amp" daName="q"
                  fc="MX"/>
            </DataSet>
            <SampledValueControl name="msvcb1" datSet="PhsMeas1" confRev="1" smvID="MU01"
                smpRate="80" nofASDU="1">
              <SmvOpts refreshTime="false" sampleRate="false"/>
            </SampledValueControl>
          </LN0>
          <LN prefix="I01" lnClass="TCTR" inst="1" lnType="TCTR"/>
          <LN prefix="I01" lnClass="TCTR" inst="2" lnType="TCTR"/>
        </LDevice>
      </Server>
    </AccessPoint>
  </IED>
  <DataTypeTemplates>
    <LNodeType id="LLN0" lnClass="LLN0"/>
    <LNodeType id="PTRC" lnClass="PTRC">
      <DO name="Mod" type="ENC"/>
      <DO name="Tr" type="ACT"/>
    </LNodeType>
    <LNodeType id="XCBR" lnClass="XCBR"><DO name="Pos" type="DPC"/></LNodeType>
    <LNodeType id="MMXU" lnClass="MMXU"><DO name="A" type="WYE"/></LNodeType>
    <LNodeType id="TCTR" lnClass="TCTR"><DO name="Amp" type="SAV"/></LNodeType>
    <DOType id="ENC" cdc="ENC"><DA name="stVal" bType="Enum" type="Mod" fc="ST"/></DOType>
    <DOType id="ACT" cdc="ACT">
      <DA name="general" bType="BOOLEAN" fc="ST"/>
      <DA name="q" bType="Quality" fc="ST"/>
      <DA name="t" bType="Timestamp" fc="ST"/>
    </DOType>
    <DOType id="DPC" cdc="DPC">
      <DA name="stVal" bType="Dbpos" fc="ST"/>
      <DA name="q" bType="Quality" fc="ST"/>
      <DA name="t" bType="Timestamp" fc="ST"/>
      <DA name="ctlModel" bType="Enum" type="Mod" fc="CF"/>
    </DOType>
    <DOType id="WYE" cdc="WYE"><SDO name="phsA" type="CMV"/><SDO name="phsB" type="CMV"/></DOType>
    <DOType id="CMV" cdc="CMV">
      <DA name="cVal" bType="Struct" type="Vector" fc="MX"/>
      <DA name="q" bType="Quality" fc="MX"/>
    </DOType>
    <DOType id="SAV" cdc="SAV">
      <DA name="instMag" bType="Struct" type="Analogue" fc="MX"/>
      <DA name="q" bType="Quality" fc="MX"/>
    </DOType>
    <DAType id="Vector"><BDA name="mag" bType="Struct" type="Float"/></DAType>
    <DAType id="Float"><BDA name="f" bType="FLOAT32"/></DAType>
    <DAType id="Analogue"><BDA name="i" bType="INT32"/></DAType>
    <EnumType id="Mod"><EnumVal ord="1">on</EnumVal></EnumType>
  </DataTypeTemplates>
</SCL>
)";

/// The description with one text in place of another, wherever it occurs.
StationDescription stationWith(std::string const& text = {}, std::string const& other = {}) {
    std::string file = kStation;
    std::size_t count = 0;
    for (std::size_t at = text.empty() ? std::string::npos : file.find(text);
         at != std::string::npos; at = file.find(text, at + other.size())) {
        file.replace(at, text.size(), other);
        ++count;
    }
    EXPECT_EQ(count != 0, !text.empty()) << text;
    StationDescription const station = readStation(file, "station.scd");
    EXPECT_TRUE(station.diagnostics.empty());
    return station;
}

Bytes complexValue(float value) { return dataStructure({dataStructure({dataFloat(value)})}); }

/// The values of the relay.
std::vector<Bytes> relayValues() {
    return {dataBoolean(true),
            dataQuality(0x4000),
            dataStructure({dataBitString({0x80}, 6), dataQuality(), dataUtcTime(kDescribedStart)}),
            dataFloat(1),
            dataStructure({dataStructure({complexValue(2), dataQuality()}),
                           dataStructure({complexValue(3), dataQuality()})}),
            dataInteger(1)};
}

std::vector<DescribedFrame> stationFrames(GooseChange const& change = {}) {
    auto const relay =
        gooseFrames(4, [&](std::size_t number, Ethernet& ethernet, GooseMessage& message) {
            message.setData(relayValues());
            if (change) {
                change(number, ethernet, message);
            }
        });
    return together(relay, svFrames(4, [](std::size_t, Ethernet&, SvMessage& message) {
                        message.asdus.front().seqData = Bytes(16);
                    }));
}

std::string const kRelay = "RELAY1LD0/LLN0$GO$gcb1";
std::string const kUnit = "MU1LD0/LLN0$MS$msvcb1";

SclLines relayDiffers(std::string const& difference) {
    return {"differs " + kRelay + ": " + difference, "match " + kUnit};
}

SclLines unitDiffers(std::string const& difference) {
    return {"match " + kRelay, "differs " + kUnit + ": " + difference};
}

TEST(CheckDescription, MatchesACaptureBuiltToMatch) {
    EXPECT_EQ(checkLines(stationWith(), stationFrames()),
              (SclLines{"match " + kRelay, "match " + kUnit}));
}

/// Each value of a message by its path, those that hold others left out.
void visitLeaves(DataViews const& values, Path const& path,
                 std::function<void(Path const&, DataView const&)> const& visit) {
    Path inside = path;
    inside.push_back(0);
    for (DataView const& value : values) {
        if (auto const* const members = std::get_if<DataViews>(&value.value)) {
            visitLeaves(*members, inside, visit);
        } else {
            visit(inside, value);
        }
        ++inside.back();
    }
}

TEST(CheckDescription, HasEveryNameAtItsPlaceAndEveryTagAsTheTypesSay) {
    auto const station = stationWith();
    DataSet const& dataSet = station.dataSets.at(0);
    for (DescribedFrame const& frame : stationFrames()) {
        auto const view = viewGoose(frame.octets);
        if (!view.allData) {
            continue;
        }
        auto const binding = bindMembers(dataSet, *view.allData);
        EXPECT_EQ(static_cast<int>(binding.end), static_cast<int>(BindingEnd::none));
        SclLines names;
        visitLeaves(*view.allData, {}, [&](Path const& path, DataView const& value) {
            DataSetMember const* const member = binding.memberAt(dataSet, path);
            ASSERT_NE(member, nullptr);
            EXPECT_TRUE(fits(member->type, value)) << member->name;
            names.push_back(member->name);
        });
        EXPECT_EQ(
            names,
            (SclLines{"LD0/PTRC1.Tr.general", "LD0/PTRC1.Tr.q", "LD0/Q0XCBR1.Pos.stVal",
                      "LD0/Q0XCBR1.Pos.q", "LD0/Q0XCBR1.Pos.t", "LD0/MMXU1.A.phsA.cVal.mag.f",
                      "LD0/MMXU1.A.phsA.cVal.mag.f", "LD0/MMXU1.A.phsA.q",
                      "LD0/MMXU1.A.phsB.cVal.mag.f", "LD0/MMXU1.A.phsB.q", "LD0/PTRC1.Mod.stVal"}));
    }
}

TEST(CheckDescription, NamesTheChannelsOfSamples) {
    auto const station = stationWith();
    DataSet const& dataSet = station.dataSets.at(1);
    auto const binding = bindSamples(dataSet, 16);
    ASSERT_TRUE(binding.has_value());
    SclLines names;
    for (std::size_t const member : binding->channelMembers) {
        names.push_back(dataSet.members[member].name);
    }
    EXPECT_EQ(names, (SclLines{"LD0/I01TCTR1.Amp.instMag.i", "LD0/I01TCTR2.Amp.instMag.i"}));
    EXPECT_EQ(binding->layout.channels()[1].offset, 8U);
    EXPECT_EQ(binding->layout.channels()[1].qualityOffset, 12U);
}

TEST(CheckDescription, FindsTheAttributeOfTheRelayThatIsAnother) {
    auto const frames = stationFrames();
    auto const linesWith = [&](std::string const& text, std::string const& other) {
        return checkLines(stationWith(text, other), frames);
    };
    EXPECT_EQ(linesWith("01-0C-CD-01-00-01", "01-0C-CD-01-00-02"),
              relayDiffers("mac 010ccd010002 != 010ccd010001 @0.0"));
    EXPECT_EQ(linesWith(">0001<", ">0002<"), relayDiffers("appId 2 != 1 @0.0"));
    EXPECT_EQ(linesWith("appID=\"RELAY1_gcb1\"", "appID=\"else\""),
              relayDiffers("goID else != RELAY1_gcb1 @0.0"));
    EXPECT_EQ(linesWith("dataSet1", "other"),
              relayDiffers("datSet RELAY1LD0/LLN0$other != RELAY1LD0/LLN0$dataSet1 @0.0"));
    EXPECT_EQ(linesWith("dataSet1\" confRev=\"1\"", "dataSet1\" confRev=\"3\""),
              relayDiffers("confRev 3 != 1 @0.0"));
    EXPECT_EQ(linesWith(">100<", ">50<"), relayDiffers("maxTime 50000000 != 100000000 @0.1"));
    EXPECT_EQ(linesWith("\"gcb1\"", "\"gcb7\""),
              (SclLines{"differs RELAY1LD0/LLN0$GO$gcb7 by address: gocbRef "
                        "RELAY1LD0/LLN0$GO$gcb7 != " +
                            kRelay + " @0.0",
                        "match " + kUnit}));
    auto const line = [](std::string const& difference) {
        return relayDiffers(difference).front();
    };
    EXPECT_EQ(linesWith("bType=\"FLOAT32\"", "bType=\"FLOAT64\"").front(),
              line("memberType [3] type" + std::to_string(static_cast<int>(BasicType::float64)) +
                   " != kind" +
                   std::to_string(static_cast<int>(TalIec61850Analysis::DataKind::floatingPoint)) +
                   " @0.0"));
    EXPECT_EQ(
        linesWith("<FCDA ldInst=\"LD0\" lnClass=\"PTRC\" lnInst=\"1\" doName=\"Tr\" daName=\"q\" "
                  "fc=\"ST\"/>",
                  ""),
        relayDiffers("memberCount 5 != 6 @0.0"));
}

TEST(CheckDescription, FindsTheAttributeOfTheUnitThatIsAnother) {
    auto const frames = stationFrames();
    auto const linesWith = [&](std::string const& text, std::string const& other) {
        return checkLines(stationWith(text, other), frames);
    };
    EXPECT_EQ(
        linesWith("smvID=\"MU01\"", "smvID=\"MU02\""),
        (SclLines{"match " + kRelay, "differs " + kUnit + " by address: svID MU02 != MU01 @0.0"}));
    EXPECT_EQ(linesWith("nofASDU=\"1\"", "nofASDU=\"2\""), unitDiffers("noASDU 2 != 1 @0.0"));
    EXPECT_EQ(linesWith("sampleRate=\"false\"", "sampleRate=\"true\""),
              unitDiffers("options { smpSynch smpRate } != { smpSynch } @0.0"));
    EXPECT_EQ(linesWith("bType=\"INT32\"", "bType=\"INT64\""),
              unitDiffers("memberCount 24 != 16 @0.0"));
    EXPECT_EQ(linesWith("PhsMeas1\" confRev=\"1\"", "PhsMeas1\" confRev=\"9\""),
              unitDiffers("confRev 9 != 1 @0.0"));
}

}  // namespace
}  // namespace TalTest::CheckDescriptionTest
