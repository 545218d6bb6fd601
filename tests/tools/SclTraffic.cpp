#include "tools/SclTraffic.hpp"

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/SclAccess.hpp"

namespace TalTest {

namespace {

constexpr std::uint32_t kStart = 1'700'000'000;
constexpr std::size_t kMessages = 10;
constexpr std::size_t kSamples = 4000;

constexpr std::string_view kBeforeAddresses = R"(<?xml version="1.0" encoding="UTF-8"?>
<SCL xmlns="http://www.iec.ch/61850/2003/SCL" version="2007" revision="B" release="4">
  <Header id="small"/>
  <Communication>
    <SubNetwork name="Bus" type="8-MMS">
)";

constexpr std::string_view kAfterAddresses = R"(    </SubNetwork>
  </Communication>
  <IED name="RELAY1">
    <AccessPoint name="S1"><Server><LDevice inst="LD0">
      <LN0 lnClass="LLN0" inst="" lnType="LLN0">
        <DataSet name="ds1">
          <FCDA ldInst="LD0" lnClass="PTRC" lnInst="1" doName="Tr" daName="general" fc="ST"/>
          <FCDA ldInst="LD0" lnClass="PTOC" lnInst="1" doName="Op" fc="ST"/>
          <FCDA ldInst="LD0" lnClass="MMXU" lnInst="1" doName="TotW" daName="mag.f" fc="MX"/>
        </DataSet>
        <GSEControl name="gcb1" datSet="ds1" appID="goTrip" confRev="3" desc="Trips"/>
      </LN0>
      <LN lnClass="PTRC" inst="1" lnType="PTRC" desc="Trip"/>
      <LN lnClass="PTOC" inst="1" lnType="PTOC" desc="Overcurrent"/>
      <LN lnClass="MMXU" inst="1" lnType="MMXU"/>
    </LDevice></Server></AccessPoint>
  </IED>
  <IED name="MU1">
    <AccessPoint name="P1"><Server><LDevice inst="LD0">
      <LN0 lnClass="LLN0" inst="" lnType="LLN0">
        <DataSet name="ds1">
          <FCDA ldInst="LD0" lnClass="TCTR" lnInst="1" doName="AmpSv" fc="MX"/>
        </DataSet>
        <SampledValueControl name="msvcb1" datSet="ds1" smvID="MU01" confRev="1"
                             smpMod="SmpPerSec" smpRate="4000" nofASDU="1">
          <SmvOpts/>
        </SampledValueControl>
      </LN0>
      <LN lnClass="TCTR" inst="1" lnType="TCTR" desc="Phase A"/>
    </LDevice></Server></AccessPoint>
  </IED>
  <IED name="RELAY2">
    <AccessPoint name="S1"><Server><LDevice inst="LD0">
      <LN0 lnClass="LLN0" inst="" lnType="LLN0"/>
      <LN lnClass="RBRF" inst="1" lnType="RBRF">
        <Inputs>
          <ExtRef iedName="RELAY1" ldInst="LD0" lnClass="PTOC" lnInst="1" doName="Op" daName="q"
                  srcLDInst="LD0" srcCBName="gcb1" serviceType="GOOSE" intAddr="DI/1"/>
          <ExtRef iedName="MU1" ldInst="LD0" lnClass="TCTR" lnInst="1" doName="AmpSv" daName="q"
                  srcLDInst="LD0" srcCBName="msvcb1" serviceType="SMV" intAddr="AI/1"/>
        </Inputs>
      </LN>
    </LDevice></Server></AccessPoint>
  </IED>
  <DataTypeTemplates>
    <LNodeType id="LLN0" lnClass="LLN0"/>
    <LNodeType id="RBRF" lnClass="RBRF"/>
    <LNodeType id="PTRC" lnClass="PTRC"><DO name="Tr" type="ACT"/></LNodeType>
    <LNodeType id="PTOC" lnClass="PTOC"><DO name="Op" type="ACT" desc="Operate"/></LNodeType>
    <LNodeType id="MMXU" lnClass="MMXU"><DO name="TotW" type="MV"/></LNodeType>
    <LNodeType id="TCTR" lnClass="TCTR"><DO name="AmpSv" type="SAV"/></LNodeType>
    <DOType id="ACT" cdc="ACT">
      <DA name="general" bType="BOOLEAN" fc="ST"/>
      <DA name="phsA" bType="BOOLEAN" fc="ST"/>
      <DA name="q" bType="Quality" fc="ST"/>
      <DA name="t" bType="Timestamp" fc="ST"/>
    </DOType>
    <DOType id="MV" cdc="MV"><DA name="mag" bType="Struct" type="Mag" fc="MX"/></DOType>
    <DOType id="SAV" cdc="SAV">
      <DA name="instMag" bType="Struct" type="Count" fc="MX"/>
      <DA name="q" bType="Quality" fc="MX"/>
      <DA name="units" bType="Struct" type="Unit" fc="CF"/>
      <DA name="sVC" bType="Struct" type="Scale" fc="CF"/>
    </DOType>
    <DAType id="Mag"><BDA name="f" bType="FLOAT32"/></DAType>
    <DAType id="Count"><BDA name="i" bType="INT32"/></DAType>
    <DAType id="Unit"><BDA name="SIUnit" bType="Enum" type="SIUnit"><Val>A</Val></BDA></DAType>
    <DAType id="Scale">
      <BDA name="scaleFactor" bType="FLOAT32"><Val>0.001</Val></BDA>
      <BDA name="offset" bType="FLOAT32"><Val>2</Val></BDA>
    </DAType>
    <EnumType id="SIUnit"><EnumVal ord="5">A</EnumVal></EnumType>
  </DataTypeTemplates>
</SCL>
)";

Bytes gooseOf(std::size_t number, ChangeGoose const& change) {
    GooseMessage message;
    message.datSet = "RELAY1LD0/LLN0$ds1";
    message.goID = "goTrip";
    message.confRev = MinimalUnsigned(3);
    message.timeAllowedtoLive = MinimalUnsigned(250);
    message.sqNum = MinimalUnsigned(number);
    message.setData({dataBoolean(false),
                     dataStructure({dataBoolean(false), dataBoolean(false), dataQuality(),
                                    dataUtcTime(kStart)}),
                     dataFloat(1.5F)});
    Ethernet ethernet = Ethernet().withVlan(5);
    if (change) {
        change(number, ethernet, message);
    }
    return gooseFrame(ethernet, message);
}

Bytes svOf(std::size_t number, ChangeSv const& change) {
    SvMessage message;
    message.asdus.front().smpCnt = Unsigned<2>(number);
    message.asdus.front().seqData = samples({{1000, 0}});
    Ethernet ethernet = svEthernet();
    if (change) {
        change(number, ethernet, message);
    }
    return svFrame(ethernet, message);
}

}  // namespace

std::string sclStationText() {
    SclAccess relay = accessOfRelay1();
    relay.accessPoint = "S1";
    relay.attributes = " redProt=\"prp\"";
    SclAccess unit = accessOfMu1();
    unit.accessPoint = "P1";
    unit.hasVlan = false;
    return std::string(kBeforeAddresses) + textOf(relay) + textOf(unit) +
           std::string(kAfterAddresses);
}

std::string replaced(std::string text, std::string_view part, std::string_view by) {
    auto const at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return at == std::string::npos ? text : text.replace(at, part.size(), by);
}

Bytes sclStationCapture(ChangeGoose const& changeGoose, ChangeSv const& changeSv) {
    constexpr std::uint32_t kSampleInterval = 250'000;
    constexpr std::size_t kSamplesPerMessage = kSamples / kMessages;
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (std::size_t sample = 0; sample < kSamples; ++sample) {
        auto const time = static_cast<std::uint32_t>(sample) * kSampleInterval;
        if (sample % kSamplesPerMessage == 0) {
            capture.add(kStart, time, gooseOf(sample / kSamplesPerMessage, changeGoose));
        }
        capture.add(kStart, time + 1000, svOf(sample, changeSv));
    }
    return capture.bytes();
}

SclFiles::SclFiles(std::string const& description, Bytes const& capture)
    : scd_(folder_.write("station.scd", text(description))),
      capture_(folder_.write("bay.pcap", capture)) {}

Arguments SclFiles::check(Arguments const& more) const {
    return joined({"scl", "check", scd_, capture_}, more);
}

std::vector<Json> SclFiles::checkRows(Arguments const& more) const {
    return rowsOf(check(joined({"--fail-on", "none"}, more)));
}

}  // namespace TalTest
