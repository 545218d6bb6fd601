#include "tools/DescribedStation.hpp"

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "tools/SampleTraffic.hpp"

namespace TalTest {

namespace {

std::string addressOf(std::string const& element, std::string const& controlBlock,
                      std::string const& mac, std::string const& appId) {
    return "<" + element + " ldInst='LD0' cbName='" + controlBlock +
           "'><Address><P type='MAC-Address'>" + mac + "</P><P type='APPID'>" + appId +
           "</P></Address></" + element + ">";
}

std::string accessOf(std::string const& ied, std::string const& address) {
    return "<ConnectedAP iedName='" + ied + "' apName='AP1'>" + address + "</ConnectedAP>\n";
}

std::string iedOf(std::string const& name, std::string const& node0, std::string const& nodes) {
    return "<IED name='" + name +
           "'><AccessPoint name='AP1'><Server><LDevice inst='LD0'>\n<LN0 lnClass='LLN0' inst='' "
           "lnType='LLN0'>" +
           node0 + "</LN0>\n" + nodes + "</LDevice></Server></AccessPoint></IED>\n";
}

std::string fcda(std::string const& node, std::string const& object, std::string const& attribute,
                 std::string const& constraint) {
    return "<FCDA ldInst='LD0' " + node + " doName='" + object + "'" +
           (attribute.empty() ? "" : " daName='" + attribute + "'") + " fc='" + constraint + "'/>";
}

std::string const kTypes = R"(
<LNodeType id='LLN0' lnClass='LLN0'/>
<LNodeType id='PTRC' lnClass='PTRC'><DO name='Tr' type='ACT'/><DO name='Op' type='ACT'/></LNodeType>
<LNodeType id='MMXU' lnClass='MMXU'><DO name='A' type='WYE'/></LNodeType>
<LNodeType id='TCTR' lnClass='TCTR'><DO name='Amp' type='SAVi'/></LNodeType>
<LNodeType id='TVTR' lnClass='TVTR'><DO name='Vol' type='SAVf'/></LNodeType>
<DOType id='ACT' cdc='ACT'><DA name='general' bType='TRIP' fc='ST'/>
<DA name='q' bType='Quality' fc='ST'/><DA name='t' bType='Timestamp' fc='ST'/></DOType>
<DOType id='WYE' cdc='WYE'><SDO name='phsA' type='CMV'/></DOType>
<DOType id='CMV' cdc='CMV'><DA name='cVal' bType='Struct' type='Vector' fc='MX'/></DOType>
<DOType id='SAVi' cdc='SAV'><DA name='instMag' bType='Struct' type='AnalogueI' fc='MX'/>
<DA name='q' bType='Quality' fc='MX'/><DA name='sVC' bType='Struct' type='Scale' fc='CF'/>
<DA name='units' bType='Struct' type='UnitA' fc='CF'/></DOType>
<DOType id='SAVf' cdc='SAV'><DA name='instMag' bType='Struct' type='AnalogueF' fc='MX'/>
<DA name='q' bType='Quality' fc='MX'/><DA name='units' bType='Struct' type='UnitV' fc='CF'/></DOType>
<DAType id='Vector'><BDA name='mag' bType='Struct' type='AnalogueF'/></DAType>
<DAType id='AnalogueI'><BDA name='i' bType='INT32'/></DAType>
<DAType id='AnalogueF'><BDA name='f' bType='FLOAT32'/></DAType>
<DAType id='Scale'><BDA name='scaleFactor' bType='FLOAT32'><Val>0.001</Val></BDA>
<BDA name='offset' bType='FLOAT32'><Val>0</Val></BDA></DAType>
<DAType id='UnitA'><BDA name='SIUnit' bType='Enum' type='SIUnit'><Val>A</Val></BDA></DAType>
<DAType id='UnitV'><BDA name='SIUnit' bType='Enum' type='SIUnit'><Val>V</Val></BDA></DAType>
<EnumType id='SIUnit'><EnumVal ord='5'>A</EnumVal><EnumVal ord='29'>V</EnumVal></EnumType>
)";

}  // namespace

std::string describedStation(std::string const& typeOfTrip, std::string const& moreSamples) {
    std::string types = kTypes;
    types.replace(types.find("TRIP"), 4, typeOfTrip);
    std::string const trip = "lnClass='PTRC' lnInst='1'";
    std::string const current = "prefix='InnA' lnClass='TCTR' lnInst='1'";
    std::string const voltage = "prefix='UnnA' lnClass='TVTR' lnInst='1'";
    return "<?xml version='1.0' encoding='UTF-8'?>\n<SCL "
           "xmlns='http://www.iec.ch/61850/2003/SCL' version='2007' revision='B'>\n"
           "<Communication><SubNetwork name='W1'>\n" +
           accessOf("RELAY1", addressOf("GSE", "gcb1", "01-0C-CD-01-00-01", "0001")) +
           accessOf("RELAY2", addressOf("GSE", "gcb2", "01-0C-CD-01-00-02", "0002")) +
           accessOf("MU01", addressOf("SMV", "msv1", "01-0C-CD-04-00-01", "4000")) +
           "</SubNetwork></Communication>\n" +
           iedOf("RELAY1",
                 "<DataSet name='ds1'>" + fcda(trip, "Tr", "general", "ST") +
                     fcda(trip, "Tr", "q", "ST") + fcda(trip, "Op", "", "ST") +
                     fcda("lnClass='MMXU' lnInst='1'", "A.phsA", "cVal.mag.f", "MX") +
                     "</DataSet><GSEControl name='gcb1' appID='RELAY1_gcb1' datSet='ds1' "
                     "confRev='1'/>",
                 "<LN lnClass='PTRC' inst='1' lnType='PTRC'/><LN lnClass='MMXU' inst='1' "
                 "lnType='MMXU'/>") +
           iedOf("RELAY2",
                 "<DataSet name='ds2'>" + fcda("lnClass='PTRC' lnInst='2'", "Tr", "general", "ST") +
                     "</DataSet><GSEControl name='gcb2' appID='RELAY2_gcb2' datSet='ds2' "
                     "confRev='1'/>",
                 "<LN lnClass='PTRC' inst='2' lnType='PTRC'/>") +
           iedOf("MU01",
                 "<DataSet name='ds3'>" + fcda(current, "Amp", "instMag.i", "MX") +
                     fcda(current, "Amp", "q", "MX") + fcda(voltage, "Vol", "instMag.f", "MX") +
                     fcda(voltage, "Vol", "q", "MX") + moreSamples +
                     "</DataSet><SampledValueControl name='msv1' smvID='MU01' datSet='ds3' "
                     "confRev='1' smpRate='80' nofASDU='1'/>",
                 "<LN prefix='InnA' lnClass='TCTR' inst='1' lnType='TCTR'/><LN prefix='UnnA' "
                 "lnClass='TVTR' inst='1' lnType='TVTR'/>") +
           "<DataTypeTemplates>" + types + "</DataTypeTemplates></SCL>\n";
}

GooseMessage relay1Message(std::uint32_t stNum, bool isTripped, std::uint16_t quality) {
    GooseMessage message;
    message.stNum = stNum;
    message.t = utcTime(1'700'000'000 + stNum);
    message.setData(
        {dataBoolean(isTripped), dataQuality(quality),
         dataStructure({dataBoolean(isTripped), dataQuality(), dataUtcTime(1'700'000'000 + stNum)}),
         dataFloat(isTripped ? 1500.F : 150.F)});
    return message;
}

Bytes describedTrips() {
    auto const relay2 = [](std::uint32_t stNum, bool isTripped) {
        GooseMessage message;
        message.gocbRef = "RELAY2LD0/LLN0$GO$gcb2";
        message.appId = 2;
        message.stNum = stNum;
        message.t = utcTime(1'700'000'000 + stNum);
        message.setData({dataBoolean(isTripped)});
        return gooseFrame(Ethernet().to("01:0c:cd:01:00:02").from("02:00:00:00:00:02"), message);
    };
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    capture.add(1'700'000'001, 0, gooseFrame(Ethernet(), relay1Message(1, false)));
    capture.add(1'700'000'001, 1000, relay2(1, false));
    capture.add(1'700'000'002, 0, gooseFrame(Ethernet(), relay1Message(2, true)));
    capture.add(1'700'000'002, 30'000'000, relay2(2, true));
    return capture.bytes();
}

WaveformSettings describedWave() {
    WaveformSettings settings;
    settings.smpRate = 4000;
    settings.smpMod = 1;
    settings.members = {WaveMember::int32, WaveMember::quality, WaveMember::float32,
                        WaveMember::quality};
    return settings;
}

Bytes describedSamples() {
    WaveformStream stream(describedWave());
    stream.send(kWaveFrames);
    return captureOf({&stream});
}

Bytes octetsOfText(std::string const& text) { return {text.begin(), text.end()}; }

}  // namespace TalTest
