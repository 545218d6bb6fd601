#include <gtest/gtest.h>

#include <TalIec61850Scl/read/ReadStation.hpp>
#include <string>
#include <vector>

#include "scl/SclText.hpp"

namespace TalTest::MembersTest {
namespace {

using namespace TalIec61850Scl;
using TalTest::SclText;

SclText stationOf(std::string const& control, std::string const& nodes = TalTest::stationNodes()) {
    SclText file;
    file.ieds = TalTest::iedText("IED1", TalTest::node0Text(control) + nodes);
    file.templates = TalTest::stationTypes();
    return file;
}

std::string fcda(std::string const& node, std::string const& rest) {
    return "<FCDA ldInst='LD0' " + node + " " + rest + "/>\n";
}

std::string const kPtrc = "lnClass='PTRC' lnInst='1'";
std::string const kMmxu = "lnClass='MMXU' lnInst='1' prefix=''";

/// The members of the only data set, as text: path, name, fc and type.
std::vector<std::string> membersOf(StationDescription const& station) {
    std::vector<std::string> texts;
    EXPECT_EQ(station.dataSets.size(), 1U);
    for (DataSetMember const& member : station.dataSets.at(0).members) {
        std::string text;
        for (std::uint32_t const index : member.path) {
            text += (text.empty() ? "" : ".") + std::to_string(index);
        }
        texts.push_back(text + " " + member.name + " " + member.fc + " " + member.bType);
    }
    return texts;
}

std::vector<std::string> gooseMembers(std::string const& fcdas) {
    StationDescription const station =
        readStation(stationOf(TalTest::gooseText(fcdas)).text(), "station.scd");
    EXPECT_TRUE(station.diagnostics.empty());
    return membersOf(station);
}

using Texts = std::vector<std::string>;

TEST(SclMembers, AreNamedByDeviceNodeObjectAndAttribute) {
    EXPECT_EQ(gooseMembers(fcda(kPtrc, "doName='Tr' daName='general' fc='ST'") +
                           fcda(kPtrc, "doName='Tr' daName='q' fc='ST'")),
              (Texts{"0 LD0/PTRC1.Tr.general ST BOOLEAN", "1 LD0/PTRC1.Tr.q ST Quality"}));
}

TEST(SclMembers, OfAnObjectAreAllAttributesOfItsConstraintInAStructure) {
    EXPECT_EQ(gooseMembers(fcda(kPtrc, "doName='Str' fc='ST'") +
                           fcda("lnClass='LLN0'", "doName='Mod' fc='ST'")),
              (Texts{"0.0 LD0/PTRC1.Str.general ST BOOLEAN", "0.1 LD0/PTRC1.Str.dirGeneral ST Enum",
                     "0.2 LD0/PTRC1.Str.q ST Quality", "1.0 LD0/LLN0.Mod.stVal ST Enum",
                     "1.1 LD0/LLN0.Mod.q ST Quality", "1.2 LD0/LLN0.Mod.t ST Timestamp"}));
}

TEST(SclMembers, OfAnObjectWithOneAttributeOfTheConstraintAreAStructureToo) {
    EXPECT_EQ(gooseMembers(fcda("lnClass='LLN0'", "doName='Mod' fc='CF'")),
              (Texts{"0.0 LD0/LLN0.Mod.ctlModel CF Enum"}));
}

TEST(SclMembers, OfNestedObjectsAreNestedWhereTheTypeHasThem) {
    EXPECT_EQ(
        gooseMembers(fcda(kMmxu, "doName='A' fc='MX'")),
        (Texts{"0.0.0.0.0 LD0/MMXU1.A.phsA.cVal.mag.i MX INT32",
               "0.0.0.0.1 LD0/MMXU1.A.phsA.cVal.mag.f MX FLOAT32",
               "0.0.0.1.0 LD0/MMXU1.A.phsA.cVal.ang.f MX FLOAT32",
               "0.0.1 LD0/MMXU1.A.phsA.q MX Quality", "0.0.2 LD0/MMXU1.A.phsA.t MX Timestamp",
               "0.1.0.0.0 LD0/MMXU1.A.phsB.cVal.mag.i MX INT32",
               "0.1.0.0.1 LD0/MMXU1.A.phsB.cVal.mag.f MX FLOAT32",
               "0.1.0.1.0 LD0/MMXU1.A.phsB.cVal.ang.f MX FLOAT32",
               "0.1.1 LD0/MMXU1.A.phsB.q MX Quality", "0.1.2 LD0/MMXU1.A.phsB.t MX Timestamp"}));
}

TEST(SclMembers, OfAnotherConstraintCountOnlyWhatHasIt) {
    EXPECT_EQ(
        gooseMembers(fcda(kMmxu, "doName='A' fc='CF'")),
        (Texts{"0.0.0.0 LD0/MMXU1.A.phsA.units.SIUnit CF Enum",
               "0.0.0.1 LD0/MMXU1.A.phsA.units.multiplier CF Enum",
               "0.1 LD0/MMXU1.A.angRef CF Enum", "0.2.0.0 LD0/MMXU1.A.phsB.units.SIUnit CF Enum",
               "0.2.0.1 LD0/MMXU1.A.phsB.units.multiplier CF Enum"}));
}

TEST(SclMembers, OfAPathLeadThroughObjectsAndStructures) {
    EXPECT_EQ(
        gooseMembers(fcda(kMmxu, "doName='A.phsB' daName='cVal.mag.f' fc='MX'") +
                     fcda(kMmxu, "doName='A.phsA' daName='cVal' fc='MX'") +
                     fcda(kMmxu, "doName='A' daName='phsA.q' fc='MX'")),
        (Texts{"0 LD0/MMXU1.A.phsB.cVal.mag.f MX FLOAT32",
               "1.0.0 LD0/MMXU1.A.phsA.cVal.mag.i MX INT32",
               "1.0.1 LD0/MMXU1.A.phsA.cVal.mag.f MX FLOAT32",
               "1.1.0 LD0/MMXU1.A.phsA.cVal.ang.f MX FLOAT32", "2 LD0/MMXU1.A.phsA.q MX Quality"}));
}

TEST(SclMembers, OfANodeWithAPrefixHaveIt) {
    EXPECT_EQ(gooseMembers(fcda("prefix='Q0' lnClass='XCBR' lnInst='1'", "doName='Pos' fc='ST'")),
              (Texts{"0.0.0 LD0/Q0XCBR1.Pos.origin.orCat ST Enum",
                     "0.0.1 LD0/Q0XCBR1.Pos.origin.orIdent ST Octet64",
                     "0.1 LD0/Q0XCBR1.Pos.stVal ST Dbpos", "0.2 LD0/Q0XCBR1.Pos.q ST Quality"}));
}

std::string const kMhai = "lnClass='MHAI' lnInst='1'";

TEST(SclMembers, OfAnArrayAreInAStructureOfItsElements) {
    EXPECT_EQ(
        gooseMembers(fcda(kMhai, "doName='HA' fc='ST'")),
        (Texts{"0.0.0 LD0/MHAI1.HA.hist(0) ST INT32", "0.0.1 LD0/MHAI1.HA.hist(1) ST INT32",
               "0.0.2 LD0/MHAI1.HA.hist(2) ST INT32", "0.0.3 LD0/MHAI1.HA.hist(3) ST INT32"}));
    EXPECT_EQ(gooseMembers(fcda(kMhai, "doName='HA' daName='hist' fc='ST'")).back(),
              "0.3 LD0/MHAI1.HA.hist(3) ST INT32");
    Texts const harmonics = gooseMembers(fcda(kMhai, "doName='HA.phsAHar' fc='MX'"));
    EXPECT_EQ(harmonics.size(), 15U);
    EXPECT_EQ(harmonics.back(), "0.2.2 LD0/MHAI1.HA.phsAHar(2).t MX Timestamp");
}

TEST(SclMembers, OfAnElementOfAnArrayAreThatOneAlone) {
    EXPECT_EQ(gooseMembers(fcda(kMhai, "doName='HA.phsAHar' daName='cVal.mag.f' fc='MX' ix='2'") +
                           fcda(kMhai, "doName='HA.phsAHar(1)' daName='q' fc='MX'") +
                           fcda(kMhai, "doName='HA' daName='hist' fc='ST' ix='3'") +
                           fcda(kMhai, "doName='HA.phsAHar' daName='cVal.ang' fc='MX' ix='0'")),
              (Texts{"0 LD0/MHAI1.HA.phsAHar(2).cVal.mag.f MX FLOAT32",
                     "1 LD0/MHAI1.HA.phsAHar(1).q MX Quality", "2 LD0/MHAI1.HA.hist(3) ST INT32",
                     "3.0 LD0/MHAI1.HA.phsAHar(0).cVal.ang.f MX FLOAT32"}));
}

TEST(SclMembers, SayWhichOfTheValuesAroundThemAreArrays) {
    auto const arraysOf = [](std::string const& rest) {
        std::string const text = TalTest::gooseText(fcda(kMhai, rest));
        StationDescription const station = readStation(stationOf(text).text(), "");
        auto const& dataSet = station.dataSets.at(0);
        std::string arrays;
        for (std::size_t steps = 1; steps < dataSet.members.back().path.size(); ++steps) {
            arrays += dataSet.members.back().isInArray(steps) ? 'A' : 'S';
        }
        return arrays;
    };
    EXPECT_EQ(arraysOf("doName='HA' fc='ST'"), "SA");
    EXPECT_EQ(arraysOf("doName='HA' daName='hist' fc='ST'"), "A");
    EXPECT_EQ(arraysOf("doName='HA.phsAHar' fc='MX'"), "AS");
    EXPECT_EQ(arraysOf("doName='HA.phsAHar' daName='cVal.ang' fc='MX' ix='0'"), "S");
    EXPECT_EQ(arraysOf("doName='HA' daName='hist' fc='ST' ix='3'"), "");
}

TEST(SclMembers, HaveTheirBasicTypes) {
    StationDescription const station =
        readStation(stationOf(TalTest::gooseText(fcda("prefix='Q0' lnClass='XCBR' lnInst='1'",
                                                      "doName='Pos' fc='ST'")))
                        .text(),
                    "");
    auto const& members = station.dataSets.at(0).members;
    ASSERT_EQ(members.size(), 4U);
    EXPECT_EQ(members[0].type, BasicType::enumerated);
    EXPECT_EQ(members[1].type, BasicType::octetString);
    EXPECT_EQ(members[2].type, BasicType::dbpos);
    EXPECT_EQ(members[3].type, BasicType::quality);
}

TEST(SclMembers, ThatCannotBeFoundAreOneValueOfUnknownTypeEach) {
    std::string const fcdas = fcda(kPtrc, "doName='Tr' daName='general' fc='ST'") +
                              fcda(kPtrc, "doName='Nope' daName='q' fc='ST'") +
                              fcda("lnClass='GGIO' lnInst='9'", "doName='Ind1' fc='ST'") +
                              fcda(kPtrc, "doName='Tr' daName='general' fc='MX'") +
                              fcda(kPtrc, "doName='Tr' fc='MX'") +
                              fcda(kPtrc, "doName='Tr' daName='q' fc='ST'");
    StationDescription const station = readStation(stationOf(TalTest::gooseText(fcdas)).text(), "");
    EXPECT_EQ(membersOf(station),
              (Texts{"0 LD0/PTRC1.Tr.general ST BOOLEAN", "1 LD0/PTRC1.Nope.q ST ",
                     "2 LD0/GGIO9.Ind1 ST ", "3 LD0/PTRC1.Tr.general MX ", "4 LD0/PTRC1.Tr MX ",
                     "5 LD0/PTRC1.Tr.q ST Quality"}));
    EXPECT_EQ(station.dataSets[0].entries, 6U);
    EXPECT_EQ(station.diagnostics.size(), 4U);
    for (Diagnostic const& diagnostic : station.diagnostics) {
        EXPECT_EQ(diagnostic.code, DiagnosticCode::badFcda);
    }
}

TEST(SclMembers, OfSamplesAreTheSame) {
    StationDescription const station = readStation(
        stationOf(TalTest::svText(fcda("lnClass='TCTR' lnInst='1'", "doName='AmpSv' fc='MX'")))
            .text(),
        "");
    EXPECT_EQ(membersOf(station), (Texts{"0.0.0 LD0/TCTR1.AmpSv.instMag.i MX INT32",
                                         "0.1 LD0/TCTR1.AmpSv.q MX Quality"}));
}

/// A member by its name.
DataSetMember memberOf(std::string const& name, std::string const& control,
                       std::string const& nodes) {
    StationDescription const station = readStation(stationOf(control, nodes).text(), "");
    for (DataSetMember const& member : station.dataSets.at(0).members) {
        if (member.name == name) {
            return member;
        }
    }
    ADD_FAILURE() << "no " << name;
    return {};
}

std::string const kTr = TalTest::gooseText(fcda(kPtrc, "doName='Tr' fc='ST'"));

TEST(SclDescriptions, AreThoseOfTheInstanceBeforeTheTypeBeforeTheNode) {
    auto const descOf = [](std::string const& name, std::string const& inside) {
        return memberOf("LD0/PTRC1.Tr." + name, kTr,
                        "<LN lnClass='PTRC' inst='1' lnType='PTRC' desc='Node'>" + inside + "</LN>")
            .desc;
    };
    EXPECT_EQ(descOf("general", ""), "general trip");
    EXPECT_EQ(descOf("phsA", ""), "Trip");
    EXPECT_EQ(descOf("phsA", "<DOI name='Tr' desc='Trip of Q0'/>"), "Trip of Q0");
    EXPECT_EQ(descOf("general", "<DOI name='Tr' desc='Trip of Q0'/>"), "Trip of Q0");
    EXPECT_EQ(descOf("phsA", "<DOI name='Tr' desc='x'><DAI name='phsA' desc='Phase A'/></DOI>"),
              "Phase A");
    EXPECT_EQ(descOf("phsA", "<DOI name='Tr'><DAI name='dU'><Val>Auslösung</Val></DAI></DOI>"),
              "Auslösung");
}

TEST(SclDescriptions, AreThoseOfTheNodeWhereThereIsNothingElse) {
    EXPECT_EQ(memberOf("LD0/PTRC1.Op.phsA", TalTest::gooseText(fcda(kPtrc, "doName='Op' fc='ST'")),
                       "<LN lnClass='PTRC' inst='1' lnType='PTRC' desc='Node'/>")
                  .desc,
              "Node");
}

std::string const kTotW = TalTest::gooseText(fcda(kMmxu, "doName='TotW' fc='MX'"));

std::string scaledPower(std::string const& unit, std::string const& multiplier) {
    return "<LN lnClass='MMXU' inst='1' lnType='MMXU'><DOI name='TotW'><SDI name='sVC'>"
           "<DAI name='scaleFactor'><Val>2.5</Val></DAI><DAI name='offset'><Val> -1 "
           "</Val></DAI></SDI>"
           "<SDI name='units'><DAI name='SIUnit'><Val>" +
           unit + "</Val></DAI><DAI name='multiplier'><Val>" + multiplier +
           "</Val></DAI></SDI></DOI></LN>";
}

TEST(SclQuantities, ScaleIntegersAndLeaveFloatsAsTheyAre) {
    std::string const node = scaledPower("W", "k");
    DataSetMember const integer = memberOf("LD0/MMXU1.TotW.mag.i", kTotW, node);
    EXPECT_EQ(integer.unit, "kW");
    ASSERT_TRUE(integer.scale);
    EXPECT_EQ(*integer.scale, (MemberScale{.factor = 2.5, .offset = -1}));
    DataSetMember const floating = memberOf("LD0/MMXU1.TotW.mag.f", kTotW, node);
    EXPECT_EQ(floating.unit, "kW");
    EXPECT_FALSE(floating.scale);
    EXPECT_EQ(memberOf("LD0/MMXU1.TotW.q", kTotW, node).unit, "");
}

TEST(SclQuantities, MayHaveOrdinalsInPlaceOfTexts) {
    EXPECT_EQ(memberOf("LD0/MMXU1.TotW.mag.f", kTotW, scaledPower("62", "3")).unit, "kW");
    EXPECT_EQ(memberOf("LD0/MMXU1.TotW.mag.f", kTotW, scaledPower("29", "6")).unit, "MV");
    EXPECT_EQ(memberOf("LD0/MMXU1.TotW.mag.f", kTotW, scaledPower("1", "3")).unit, "");
    EXPECT_EQ(memberOf("LD0/MMXU1.TotW.mag.f", kTotW, scaledPower("5", "-3")).unit, "mA");
}

TEST(SclQuantities, AreCutAfterAWholeCharacter) {
    std::string unit;
    for (int i = 0; i < 100; ++i) {
        unit += "Ω";
    }
    std::string const cut = memberOf("LD0/MMXU1.TotW.mag.f", kTotW, scaledPower(unit, "k")).unit;
    EXPECT_EQ(cut, "k" + unit.substr(0, 30));
}

TEST(SclQuantities, AreThoseOfTheTypeWhereTheInstanceHasNone) {
    DataSetMember const current =
        memberOf("LD0/TCTR1.AmpSv.instMag.i",
                 TalTest::svText(fcda("lnClass='TCTR' lnInst='1'", "doName='AmpSv' fc='MX'")),
                 TalTest::stationNodes());
    EXPECT_EQ(current.unit, "A");
    EXPECT_EQ(current.scale, (MemberScale{.factor = 0.001, .offset = 0}));
}

TEST(SclQuantities, AreNotSetWhereTheDescriptionHasNone) {
    DataSetMember const power = memberOf("LD0/MMXU1.TotW.mag.i", kTotW, TalTest::stationNodes());
    EXPECT_EQ(power.unit, "");
    EXPECT_FALSE(power.scale);
}

TEST(SclQuantities, OfAnAngleAreNotThoseOfTheMagnitude) {
    std::string const control = TalTest::gooseText(fcda(kMmxu, "doName='A' fc='MX'"));
    std::string const node =
        "<LN lnClass='MMXU' inst='1' lnType='MMXU'><DOI name='A'><SDI name='phsA'>"
        "<SDI name='units'><DAI name='SIUnit'><Val>A</Val></DAI></SDI></SDI></DOI></LN>";
    EXPECT_EQ(memberOf("LD0/MMXU1.A.phsA.cVal.mag.f", control, node).unit, "A");
    EXPECT_EQ(memberOf("LD0/MMXU1.A.phsA.cVal.ang.f", control, node).unit, "");
    EXPECT_EQ(memberOf("LD0/MMXU1.A.phsB.cVal.mag.f", control, node).unit, "");
}

}  // namespace
}  // namespace TalTest::MembersTest
