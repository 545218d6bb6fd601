// Each construction that a data set can have, and a capture built to match: the description has no
// difference, every value has its name, and every tag is the one that the types promise.

#include <gtest/gtest.h>

#include <variant>

#include "scl/SclText.hpp"
#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::CheckConstructionsTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::DataViews;
using TalIec61850Analysis::viewGoose;
using Path = std::vector<std::uint32_t>;

/// Where control block gcb1 of LD0 of an IED sends to: what gooseFrames() sends to.
std::string addressText(std::string const& ied, std::string const& attributes = {}) {
    return "<SubNetwork name='bus'><ConnectedAP iedName='" + ied + "' apName='AP1' " + attributes +
           "><GSE ldInst='LD0' cbName='gcb1'><Address>"
           "<P xsi:type='tP_MAC-Address' type='MAC-Address'>01-0c-cd-01-00-01</P>"
           "<P type='APPID'>0001</P><P type='VLAN-PRIORITY'>4</P><P type='VLAN-ID'>005</P>"
           "</Address></GSE></ConnectedAP></SubNetwork>";
}

SclText constructionOf(std::string const& fcdas) {
    SclText file;
    file.attributes += " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'";
    file.communication = addressText("IED1");
    file.ieds = iedText("IED1", node0Text(gooseText(fcdas)) + stationNodes());
    file.templates = stationTypes();
    return file;
}

std::string fcdaOf(std::string const& node, std::string const& rest) {
    return "<FCDA ldInst='LD0' " + node + " " + rest + "/>\n";
}

std::string const kTrip = "lnClass='PTRC' lnInst='1'";
std::string const kMeasured = "lnClass='MMXU' lnInst='1'";
std::string const kBreaker = "prefix='Q0' lnClass='XCBR' lnInst='1'";
std::string const kHarmonics = "lnClass='MHAI' lnInst='1'";

/// Appends the names of all values that hold no others, and looks at their tags.
void addNames(DataSet const& dataSet, MemberBinding const& binding, DataViews const& values,
              Path const& path, SclLines& names) {
    Path inside = path;
    inside.push_back(0);
    for (auto const& value : values) {
        if (auto const* const members = std::get_if<DataViews>(&value.value)) {
            addNames(dataSet, binding, *members, inside, names);
        } else {
            DataSetMember const* const member = binding.memberAt(dataSet, inside);
            names.push_back(member != nullptr ? member->name : "none");
            EXPECT_TRUE(member != nullptr && fits(member->type, value)) << names.back();
        }
        ++inside.back();
    }
}

/// Checks a capture of these values against a file.
void expectNames(std::string const& text, std::vector<Bytes> const& values, SclLines const& names,
                 std::string const& device = "IED1LD0", GooseChange const& more = {}) {
    auto const station = readStation(text, "station.scd");
    EXPECT_TRUE(station.diagnostics.empty());
    std::string const reference = device + "/LLN0$GO$gcb1";
    auto const frames =
        gooseFrames(3, [&](std::size_t number, Ethernet& ethernet, GooseMessage& message) {
            message.gocbRef = reference;
            message.datSet = device + "/LLN0$ds1";
            message.goID = "id1";
            message.setData(values);
            if (more) {
                more(number, ethernet, message);
            }
        });
    EXPECT_EQ(checkLines(station, frames), SclLines{"match " + reference});
    auto const view = viewGoose(frames[0].octets);
    DataSet const& dataSet = station.dataSets.at(0);
    SclLines found;
    addNames(dataSet, bindMembers(dataSet, *view.allData), *view.allData, {}, found);
    EXPECT_EQ(found, names);
}

Bytes complexOf(std::int64_t count, float value) {
    return dataStructure(
        {dataStructure({dataInteger(count), dataFloat(value)}), dataStructure({dataFloat(120)})});
}

/// A value of class CMV.
Bytes measuredOf(float value) {
    return dataStructure({complexOf(1, value), dataQuality(), dataUtcTime(kDescribedStart)});
}

TEST(CheckConstructions, LeavesOfObjects) {
    expectNames(constructionOf(fcdaOf(kTrip, "doName='Tr' daName='general' fc='ST'") +
                               fcdaOf(kTrip, "doName='Tr' daName='q' fc='ST'") +
                               fcdaOf(kTrip, "doName='Str' daName='dirGeneral' fc='ST'") +
                               fcdaOf(kBreaker, "doName='Pos' daName='stVal' fc='ST'"))
                    .text(),
                {dataBoolean(true), dataQuality(), dataInteger(2), dataBitString({0x40}, 6)},
                {"LD0/PTRC1.Tr.general", "LD0/PTRC1.Tr.q", "LD0/PTRC1.Str.dirGeneral",
                 "LD0/Q0XCBR1.Pos.stVal"});
}

TEST(CheckConstructions, WholeObjects) {
    expectNames(
        constructionOf(fcdaOf(kTrip, "doName='Tr' fc='ST'") +
                       fcdaOf(kBreaker, "doName='Pos' fc='ST'"))
            .text(),
        {dataStructure({dataBoolean(true), dataBoolean(false), dataQuality(), dataUtcTime(1)}),
         dataStructure({dataStructure({dataInteger(3), dataOctetString({1, 2})}),
                        dataBitString({0x80}, 6), dataQuality()})},
        {"LD0/PTRC1.Tr.general", "LD0/PTRC1.Tr.phsA", "LD0/PTRC1.Tr.q", "LD0/PTRC1.Tr.t",
         "LD0/Q0XCBR1.Pos.origin.orCat", "LD0/Q0XCBR1.Pos.origin.orIdent", "LD0/Q0XCBR1.Pos.stVal",
         "LD0/Q0XCBR1.Pos.q"});
}

TEST(CheckConstructions, ObjectsInObjects) {
    expectNames(constructionOf(fcdaOf(kMeasured, "doName='A' fc='MX'") +
                               fcdaOf(kMeasured, "doName='A.phsB' daName='cVal.mag.f' fc='MX'") +
                               fcdaOf(kMeasured, "doName='A.phsA' daName='cVal' fc='MX'"))
                    .text(),
                {dataStructure({measuredOf(1), measuredOf(2)}), dataFloat(3), complexOf(1, 2)},
                {"LD0/MMXU1.A.phsA.cVal.mag.i", "LD0/MMXU1.A.phsA.cVal.mag.f",
                 "LD0/MMXU1.A.phsA.cVal.ang.f", "LD0/MMXU1.A.phsA.q", "LD0/MMXU1.A.phsA.t",
                 "LD0/MMXU1.A.phsB.cVal.mag.i", "LD0/MMXU1.A.phsB.cVal.mag.f",
                 "LD0/MMXU1.A.phsB.cVal.ang.f", "LD0/MMXU1.A.phsB.q", "LD0/MMXU1.A.phsB.t",
                 "LD0/MMXU1.A.phsB.cVal.mag.f", "LD0/MMXU1.A.phsA.cVal.mag.i",
                 "LD0/MMXU1.A.phsA.cVal.mag.f", "LD0/MMXU1.A.phsA.cVal.ang.f"});
}

TEST(CheckConstructions, ArraysAndTheirElements) {
    expectNames(constructionOf(
                    fcdaOf(kHarmonics, "doName='HA' daName='hist' fc='ST'") +
                    fcdaOf(kHarmonics, "doName='HA.phsAHar' daName='cVal.mag.f' fc='MX' ix='2'") +
                    fcdaOf(kHarmonics, "doName='HA.phsAHar' daName='q' fc='MX' ix='1'"))
                    .text(),
                {dataArray({dataInteger(1), dataInteger(2), dataInteger(3), dataInteger(4)}),
                 dataFloat(5), dataQuality()},
                {"LD0/MHAI1.HA.hist(0)", "LD0/MHAI1.HA.hist(1)", "LD0/MHAI1.HA.hist(2)",
                 "LD0/MHAI1.HA.hist(3)", "LD0/MHAI1.HA.phsAHar(2).cVal.mag.f",
                 "LD0/MHAI1.HA.phsAHar(1).q"});
}

TEST(CheckConstructions, NodeZeroWithAnEmptyInstance) {
    expectNames(
        constructionOf(fcdaOf("lnClass='LLN0' lnInst=''", "doName='Mod' daName='stVal' fc='ST'") +
                       fcdaOf("lnClass='LLN0'", "doName='Mod' fc='ST'"))
            .text(),
        {dataInteger(1), dataStructure({dataInteger(1), dataQuality(), dataUtcTime(1)})},
        {"LD0/LLN0.Mod.stVal", "LD0/LLN0.Mod.stVal", "LD0/LLN0.Mod.q", "LD0/LLN0.Mod.t"});
}

TEST(CheckConstructions, DevicesWithANameOfTheirOwn) {
    SclText file = constructionOf(fcdaOf(kTrip, "doName='Tr' daName='general' fc='ST'"));
    file.ieds.replace(file.ieds.find("<LDevice"), 8, "<LDevice ldName='Bay7'");
    expectNames(file.text(), {dataBoolean(true)}, {"LD0/PTRC1.Tr.general"}, "Bay7");
}

TEST(CheckConstructions, SeveralAccessPoints) {
    SclText file = constructionOf(fcdaOf(kTrip, "doName='Tr' daName='general' fc='ST'"));
    file.ieds.replace(file.ieds.find("<AccessPoint"), 0,
                      "<AccessPoint name='AP0'><Server><LDevice inst='LDX'>" + node0Text("") +
                          "</LDevice></Server></AccessPoint>");
    expectNames(file.text(), {dataBoolean(true)}, {"LD0/PTRC1.Tr.general"});
}

TEST(CheckConstructions, PrefixesOfNamespaces) {
    std::string text = constructionOf(fcdaOf(kTrip, "doName='Tr' fc='ST'")).text();
    for (std::size_t at = text.find('<', 1); at != std::string::npos; at = text.find('<', at)) {
        at += text[at + 1] == '/' ? 2 : 1;
        text.insert(at, "scl:");
    }
    text.replace(text.find("xmlns="), 6, "xmlns:scl=");
    expectNames(
        text,
        {dataStructure({dataBoolean(true), dataBoolean(false), dataQuality(), dataUtcTime(1)})},
        {"LD0/PTRC1.Tr.general", "LD0/PTRC1.Tr.phsA", "LD0/PTRC1.Tr.q", "LD0/PTRC1.Tr.t"});
}

TEST(CheckConstructions, PublishersOverTwoLansOrARing) {
    SclText file = constructionOf(fcdaOf(kTrip, "doName='Tr' daName='general' fc='ST'"));
    for (std::string const protocol : {"prp", "hsr"}) {
        file.communication = addressText("IED1", "redProt='" + protocol + "'");
        expectNames(file.text(), {dataBoolean(true)}, {"LD0/PTRC1.Tr.general"}, "IED1LD0",
                    [&](std::size_t number, Ethernet& ethernet, GooseMessage&) {
                        auto const sequence = static_cast<std::uint16_t>(number);
                        ethernet = protocol == "prp" ? ethernet.withPrp('A', sequence)
                                                     : ethernet.withHsr('B', sequence);
                    });
    }
}

TEST(CheckConstructions, MembersThatLeadToNothing) {
    // They are values of any type: the others keep their names.
    auto const file = constructionOf(fcdaOf(kTrip, "doName='Tr' daName='general' fc='ST'") +
                                     fcdaOf(kTrip, "doName='Nope' fc='ST'") +
                                     fcdaOf(kTrip, "doName='Tr' daName='q' fc='ST'"));
    auto const station = readStation(file.text(), "station.scd");
    EXPECT_FALSE(station.diagnostics.empty());
    for (Bytes const& any : {dataInteger(7), dataStructure({dataBoolean(true), dataFloat(1)})}) {
        EXPECT_EQ(
            checkLines(station,
                       gooseFrames(2,
                                   [&](std::size_t, Ethernet&, GooseMessage& message) {
                                       message.gocbRef = "IED1LD0/LLN0$GO$gcb1";
                                       message.datSet = "IED1LD0/LLN0$ds1";
                                       message.goID = "id1";
                                       message.setData({dataBoolean(true), any, dataQuality()});
                                   })),
            SclLines{"match IED1LD0/LLN0$GO$gcb1"});
    }
}

/// Samples of a data set of TCTR1, as described by editions before there was smpMod, or after.
SclText sampledOf(std::string const& control) {
    SclText file;
    file.attributes = {};
    file.ieds =
        iedText("MU1", node0Text("<DataSet name='ds1'>" +
                                 fcdaOf("lnClass='TCTR' lnInst='1'", "doName='AmpSv' fc='MX'") +
                                 "</DataSet>" + control) +
                           stationNodes());
    file.templates = stationTypes();
    file.communication =
        "<SubNetwork name='bus'><ConnectedAP iedName='MU1' apName='AP1'><SMV ldInst='LD0' "
        "cbName='msv1'><Address><P type='MAC-Address'>01-0C-CD-04-00-01</P>"
        "<P type='APPID'>4000</P><P type='VLAN-ID'>005</P></Address></SMV></ConnectedAP>"
        "</SubNetwork>";
    return file;
}

TEST(CheckConstructions, SamplesOfEitherEdition) {
    std::string const head =
        "<SampledValueControl name='msv1' smvID='MU01' datSet='ds1' confRev='1' nofASDU='1' ";
    for (std::string const& control :
         {head + "smpRate='80'/>", head + "smpRate='80'><SmvOpts/></SampledValueControl>",
          head + "smpRate='4000' smpMod='SmpPerSec'/>",
          head + "smpRate='4000' smpMod='SmpPerSec' multicast='true'><SmvOpts "
                 "sampleSynchronized='false'/></SampledValueControl>"}) {
        auto const station = readStation(sampledOf(control).text(), "station.scd");
        EXPECT_TRUE(station.diagnostics.empty());
        EXPECT_EQ(checkLines(station, svFrames(500,
                                               [](std::size_t, Ethernet&, SvMessage& message) {
                                                   message.asdus.front().seqData = Bytes(8);
                                               })),
                  SclLines{"match MU1LD0/LLN0$MS$msv1"})
            << control;
        auto const binding = bindSamples(station.dataSets.at(0), 8);
        ASSERT_TRUE(binding.has_value());
        EXPECT_EQ(station.dataSets[0].members[binding->channelMembers.at(0)].name,
                  "LD0/TCTR1.AmpSv.instMag.i");
    }
}

}  // namespace
}  // namespace TalTest::CheckConstructionsTest
