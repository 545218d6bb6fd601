#include <gtest/gtest.h>

#include <TalIec61850Scl/read/ReadStation.hpp>
#include <string>

#include "scl/SclText.hpp"

namespace TalTest::ControlBlocksTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::MacAddress;
using TalIec61850Analysis::StreamProtocol;
using TalTest::SclText;

StationDescription readControl(std::string const& control, std::string const& communication = "",
                               std::string const& attributes = "version='2007'") {
    SclText file;
    file.attributes = attributes;
    file.communication = communication;
    file.ieds = TalTest::iedText("IED1", TalTest::node0Text(control) + TalTest::stationNodes());
    file.templates = TalTest::stationTypes();
    return readStation(file.text(), "station.scd");
}

TEST(SclControlBlocks, OfGooseHaveTheirNamesOnTheWire) {
    auto const station = readControl(
        "<DataSet name='dsTrip'/>\n<GSEControl name='gcb1' desc=' Trips ' appID='Trip/1' "
        "datSet='dsTrip' confRev='7' fixedOffs='true'/>");
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    ControlBlock const& block = station.controlBlocks[0];
    EXPECT_EQ(block.protocol, StreamProtocol::goose);
    EXPECT_EQ(block.ied, "IED1");
    EXPECT_EQ(block.ldInst, "LD0");
    EXPECT_EQ(block.name, "gcb1");
    EXPECT_EQ(block.reference, "IED1LD0/LLN0$GO$gcb1");
    EXPECT_EQ(block.id, "Trip/1");
    EXPECT_EQ(block.desc, "Trips");
    EXPECT_EQ(block.dataSetReference, "IED1LD0/LLN0$dsTrip");
    EXPECT_EQ(block.dataSet, 0U);
    EXPECT_EQ(block.confRev, 7U);
    EXPECT_TRUE(block.fixedOffsets);
    EXPECT_EQ(block.accessPoint, "");
    EXPECT_EQ(block.place, (SclPlace{.file = 0, .line = 9}));
    EXPECT_EQ(station.dataSets[0].place, (SclPlace{.file = 0, .line = 8}));
    EXPECT_EQ(station.dataSets[0].reference, "IED1LD0/LLN0$dsTrip");
    EXPECT_EQ(station.dataSets[0].ied, "IED1");
    EXPECT_TRUE(station.diagnostics.empty());
    EXPECT_EQ(station.files, std::vector<std::string>{"station.scd"});
    EXPECT_EQ(station.ieds, std::vector<std::string>{"IED1"});
}

TEST(SclControlBlocks, OfSamplesHaveRateAndOptions) {
    auto const station = readControl(
        "<SampledValueControl name='msv1' smvID='MU01' confRev='2' smpRate='4800' nofASDU='2' "
        "smpMod='SmpPerSec'><SmvOpts refreshTime='true' sampleRate='1' dataSet='false' "
        "synchSourceId='true'/></SampledValueControl>");
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    ControlBlock const& block = station.controlBlocks[0];
    EXPECT_EQ(block.protocol, StreamProtocol::sv);
    EXPECT_EQ(block.reference, "IED1LD0/LLN0$MS$msv1");
    EXPECT_EQ(block.id, "MU01");
    EXPECT_FALSE(block.dataSetReference);
    EXPECT_FALSE(block.dataSet);
    EXPECT_EQ(block.smpRate, 4800U);
    EXPECT_EQ(block.smpRateUnit, SampleRateUnit::samplesPerSecond);
    EXPECT_EQ(block.nofASDU, 2U);
    EXPECT_EQ(block.options, (SmvOptions{.refreshTime = true,
                                         .sampleSynchronized = true,
                                         .sampleRate = true,
                                         .synchSourceId = true}));
    EXPECT_TRUE(block.multicast);
}

TEST(SclControlBlocks, OfTheFirstEditionHaveNoSmpModAndSayWhatIsSynchronized) {
    std::string const control =
        "<SampledValueControl name='msv1' smvID='MU01' smpRate='80' nofASDU='1'>"
        "<SmvOpts dataRef='true'/></SampledValueControl>";
    auto const station = readControl(control, "", "");
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    ControlBlock const& block = station.controlBlocks[0];
    EXPECT_EQ(block.smpRateUnit, SampleRateUnit::samplesPerPeriod);
    EXPECT_EQ(block.options, (SmvOptions{.dataSet = true}));
    EXPECT_FALSE(block.confRev);
}

TEST(SclControlBlocks, OfUnicastSamplesHaveAnotherReference) {
    auto const station = readControl(
        "<SampledValueControl name='u1' smvID='MU01' smpMod='SecPerSmp' multicast='false'/>");
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].reference, "IED1LD0/LLN0$US$u1");
    EXPECT_FALSE(station.controlBlocks[0].multicast);
    EXPECT_FALSE(station.controlBlocks[0].options);
    EXPECT_EQ(station.controlBlocks[0].smpRateUnit, SampleRateUnit::secondsPerSample);
}

TEST(SclControlBlocks, OfGsseAndReportsAreNone) {
    auto const station = readControl(
        "<GSEControl name='g' appID='g' type='GSSE'/><ReportControl name='r' confRev='1'/>");
    EXPECT_TRUE(station.controlBlocks.empty());
}

TEST(SclControlBlocks, OfADeviceWithANameOfItsOwnHaveIt) {
    SclText file;
    file.ieds =
        "<IED name='IED1'><AccessPoint name='AP1'><Server><LDevice inst='LD0' ldName='Bay7'>" +
        TalTest::node0Text("<DataSet name='d'/><GSEControl name='g' appID='i' datSet='d'/>") +
        "</LDevice></Server></AccessPoint></IED>";
    auto const station = readStation(file.text(), "");
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].reference, "Bay7/LLN0$GO$g");
    EXPECT_EQ(station.controlBlocks[0].dataSetReference, "Bay7/LLN0$d");
}

TEST(SclControlBlocks, OfOneDataSetShareIt) {
    auto const station = readControl(
        "<DataSet name='d'/><GSEControl name='a' appID='a' datSet='d'/>"
        "<GSEControl name='b' appID='b' datSet='d'/>");
    ASSERT_EQ(station.controlBlocks.size(), 2U);
    EXPECT_EQ(station.controlBlocks[0].dataSet, 0U);
    EXPECT_EQ(station.controlBlocks[1].dataSet, 0U);
    EXPECT_EQ(station.dataSets.size(), 1U);
}

TEST(SclControlBlocks, AreKnownWhateverThePrefixOfTheirNamespace) {
    std::string const text =
        "<s:SCL xmlns:s='http://www.iec.ch/61850/2003/SCL' xmlns:v='urn:v'><s:Private v:x='1'>"
        "<v:IED name='none'/></s:Private><s:IED name='IED1'><s:AccessPoint name='P'><s:Server>"
        "<s:LDevice inst='LD0'><s:LN0 lnClass='LLN0' inst='' lnType='T'>"
        "<s:GSEControl v:appID='other' appID='goose' name='g'/></s:LN0></s:LDevice></s:Server>"
        "</s:AccessPoint></s:IED></s:SCL>";
    auto const station = readStation(text, "");
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].id, "goose");
    EXPECT_EQ(station.ieds, std::vector<std::string>{"IED1"});
}

std::string const kGoose = "<GSEControl name='gcb1' appID='id1'/>\n";

std::string accessPoint(std::string const& inside, std::string const& attributes = "") {
    return "<SubNetwork name='N'><ConnectedAP iedName='IED1' apName='AP1' " + attributes + ">" +
           inside + "</ConnectedAP></SubNetwork>\n";
}

std::string gse(std::string const& inside) {
    return "<GSE ldInst='LD0' cbName='gcb1'>" + inside + "</GSE>";
}

ControlBlockAddress addressOf(std::string const& inside) {
    auto const station = readControl(kGoose, accessPoint(gse(inside)));
    EXPECT_TRUE(station.diagnostics.empty());
    return station.controlBlocks.at(0).address;
}

TEST(SclAddresses, AreHexadecimalButForThePriority) {
    ControlBlockAddress const address = addressOf(
        "<Address><P type='VLAN-ID'>020</P><P type='MAC-Address'>01-0C-CD-01-00-fF</P>"
        "<P xsi:type='tP_APPID' type='APPID'> 3001 </P><P type='VLAN-PRIORITY'>4</P></Address>"
        "<MinTime unit='s' multiplier='m'>4</MinTime><MaxTime>1000.5</MaxTime>");
    EXPECT_EQ(address.mac, (MacAddress{0x01, 0x0C, 0xCD, 0x01, 0x00, 0xFF}));
    EXPECT_EQ(address.appId, 0x3001);
    EXPECT_EQ(address.vlanId, 0x020);
    EXPECT_EQ(address.vlanPriority, 4);
    EXPECT_EQ(address.minTime, 4'000'000);
    EXPECT_EQ(address.maxTime, 1'000'500'000);
}

TEST(SclAddresses, MayHaveColonsOrNothingBetweenOctets) {
    MacAddress const mac{0x01, 0x0C, 0xCD, 0x01, 0x00, 0x1A};
    EXPECT_EQ(addressOf("<Address><P type='MAC-Address'>01:0c:cd:01:00:1a</P></Address>").mac, mac);
    EXPECT_EQ(addressOf("<Address><P type='MAC-Address'>010CCD01001A</P></Address>").mac, mac);
}

TEST(SclAddresses, HaveTimesInTheUnitThatTheyName) {
    EXPECT_EQ(addressOf("<MaxTime multiplier=''>2</MaxTime>").maxTime, 2'000'000'000);
    EXPECT_EQ(addressOf("<MaxTime multiplier='u'>250</MaxTime>").maxTime, 250'000);
    EXPECT_EQ(addressOf("<MaxTime multiplier='k'>1</MaxTime>").maxTime, 1'000'000'000'000);
    EXPECT_FALSE(addressOf("").maxTime);
}

TEST(SclAddresses, ThatCannotBeReadAreToldAndLeftOut) {
    for (std::string const text :
         {"<P type='MAC-Address'>01-0C-CD-01-00</P>", "<P type='MAC-Address'>01-0C-CD-01-00-0G</P>",
          "<P type='MAC-Address'>01-0C-CD-01-00.01</P>", "<P type='APPID'>30001</P>",
          "<P type='APPID'>-1</P>", "<P type='APPID'/>", "<P type='VLAN-ID'>1000</P>",
          "<P type='VLAN-PRIORITY'>8</P>", "<P type='VLAN-ID'>xyz</P>"}) {
        auto const station =
            readControl(kGoose, accessPoint(gse("<Address>" + text + "</Address>")));
        ASSERT_EQ(station.diagnostics.size(), 1U) << text;
        EXPECT_EQ(station.diagnostics[0].code, DiagnosticCode::badAddress) << text;
        EXPECT_EQ(station.controlBlocks.at(0).address, ControlBlockAddress{}) << text;
        EXPECT_EQ(station.controlBlocks[0].accessPoint, "AP1") << text;
    }
    for (std::string const text :
         {"<MaxTime>soon</MaxTime>", "<MinTime>-4</MinTime>", "<MaxTime>1e300</MaxTime>",
          "<MaxTime multiplier='q'>1</MaxTime>"}) {
        auto const station = readControl(kGoose, accessPoint(gse(text)));
        ASSERT_EQ(station.diagnostics.size(), 1U) << text;
        EXPECT_EQ(station.diagnostics[0].code, DiagnosticCode::badAddress) << text;
    }
}

TEST(SclAddresses, SayHowTheAccessPointIsAttached) {
    for (auto const& [text, protocol] :
         {std::pair{"prp", RedundancyProtocol::prp}, std::pair{"hsr", RedundancyProtocol::hsr},
          std::pair{"rstp", RedundancyProtocol::rstp},
          std::pair{"none", RedundancyProtocol::none}}) {
        std::string const attribute = "redProt='" + std::string(text) + "'";
        EXPECT_EQ(
            readControl(kGoose, accessPoint(gse(""), attribute)).controlBlocks.at(0).redundancy,
            protocol);
        EXPECT_EQ(readControl(kGoose, accessPoint("", attribute)).controlBlocks.at(0).redundancy,
                  protocol);
    }
}

TEST(SclAddresses, AreOfOneProtocolEach) {
    auto const station = readControl(
        "<SampledValueControl name='cb' smvID='s'/><GSEControl name='cb' appID='g'/>",
        accessPoint(
            "<SMV ldInst='LD0' cbName='cb'><Address><P type='APPID'>4000</P></Address></SMV>"
            "<GSE ldInst='LD0' cbName='cb'><Address><P type='APPID'>0001</P></Address></GSE>"));
    ASSERT_EQ(station.controlBlocks.size(), 2U);
    EXPECT_EQ(station.controlBlocks[0].address.appId, 0x4000);
    EXPECT_EQ(station.controlBlocks[1].address.appId, 0x0001);
}

TEST(SclAddresses, OfItsOwnAccessPointComeBeforeThoseOfOthers) {
    SclText file;
    file.ieds =
        "<IED name='IED1'><AccessPoint name='AP1'><Server><LDevice inst='A'>" +
        TalTest::node0Text("<GSEControl name='g' appID='a'/>") +
        "</LDevice></Server></AccessPoint><AccessPoint name='AP2'><Server><LDevice inst='B'>" +
        TalTest::node0Text("<GSEControl name='g' appID='b'/>") +
        "</LDevice></Server></AccessPoint><AccessPoint name='AP3'><ServerAt apName='AP2'/>"
        "</AccessPoint></IED>";
    auto const at = [](std::string const& name, std::string const& device,
                       std::string const& appId) {
        return "<ConnectedAP iedName='IED1' apName='" + name + "'><GSE ldInst='" + device +
               "' cbName='g'><Address><P type='APPID'>" + appId +
               "</P></Address></GSE></ConnectedAP>";
    };
    file.communication = "<SubNetwork name='N'>" + at("AP3", "A", "0003") + at("AP1", "A", "0001") +
                         at("AP3", "B", "0004") + "</SubNetwork>";
    auto const station = readStation(file.text(), "");
    ASSERT_EQ(station.controlBlocks.size(), 2U);
    EXPECT_EQ(station.controlBlocks[0].address.appId, 0x0001);
    EXPECT_EQ(station.controlBlocks[0].accessPoint, "AP1");
    EXPECT_EQ(station.controlBlocks[0].reference, "IED1A/LLN0$GO$g");
    EXPECT_EQ(station.controlBlocks[1].address.appId, 0x0004);
    EXPECT_EQ(station.controlBlocks[1].accessPoint, "AP3");
}

}  // namespace
}  // namespace TalTest::ControlBlocksTest
