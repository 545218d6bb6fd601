#include "scl/SclText.hpp"

namespace TalTest {

std::string const& stationTypes() {
    static std::string const text = R"(
<LNodeType id='LLN0' lnClass='LLN0'><DO name='Mod' type='ENC'/></LNodeType>
<LNodeType id='PTRC' lnClass='PTRC'>
  <DO name='Tr' type='ACT' desc='Trip'/><DO name='Op' type='ACT'/><DO name='Str' type='ACD'/>
</LNodeType>
<LNodeType id='XCBR' lnClass='XCBR'><DO name='Pos' type='DPC'/></LNodeType>
<LNodeType id='MMXU' lnClass='MMXU'><DO name='A' type='WYE'/><DO name='TotW' type='MV'/></LNodeType>
<LNodeType id='TCTR' lnClass='TCTR'><DO name='AmpSv' type='SAV'/></LNodeType>
<LNodeType id='MHAI' lnClass='MHAI'><DO name='HA' type='HWYE'/></LNodeType>
<DOType id='ENC' cdc='ENC'>
  <DA name='stVal' bType='Enum' type='Mod' fc='ST'/>
  <DA name='q' bType='Quality' fc='ST'/><DA name='t' bType='Timestamp' fc='ST'/>
  <DA name='ctlModel' bType='Enum' type='CtlModel' fc='CF'/>
</DOType>
<DOType id='ACT' cdc='ACT'>
  <DA name='general' bType='BOOLEAN' fc='ST' desc='general trip'/>
  <DA name='phsA' bType='BOOLEAN' fc='ST'/>
  <DA name='q' bType='Quality' fc='ST'/><DA name='t' bType='Timestamp' fc='ST'/>
  <DA name='dU' bType='Unicode255' fc='DC'/>
</DOType>
<DOType id='ACD' cdc='ACD'>
  <DA name='general' bType='BOOLEAN' fc='ST'/>
  <DA name='dirGeneral' bType='Enum' type='Dir' fc='ST'/>
  <DA name='q' bType='Quality' fc='ST'/>
</DOType>
<DOType id='DPC' cdc='DPC'>
  <DA name='origin' bType='Struct' type='Originator' fc='ST'/>
  <DA name='stVal' bType='Dbpos' fc='ST'/>
  <DA name='q' bType='Quality' fc='ST'/>
  <DA name='SBOw' bType='Struct' type='SBOw' fc='CO'/>
</DOType>
<DOType id='WYE' cdc='WYE'>
  <SDO name='phsA' type='CMV'/>
  <DA name='angRef' bType='Enum' type='AngRef' fc='CF'/>
  <SDO name='phsB' type='CMV'/>
</DOType>
<DOType id='CMV' cdc='CMV'>
  <DA name='cVal' bType='Struct' type='Vector' fc='MX'/>
  <DA name='q' bType='Quality' fc='MX'/><DA name='t' bType='Timestamp' fc='MX'/>
  <DA name='units' bType='Struct' type='Unit' fc='CF'/>
</DOType>
<DOType id='MV' cdc='MV'>
  <DA name='mag' bType='Struct' type='Analogue' fc='MX'/>
  <DA name='q' bType='Quality' fc='MX'/>
  <DA name='units' bType='Struct' type='Unit' fc='CF'/>
  <DA name='sVC' bType='Struct' type='Scaled' fc='CF'/>
</DOType>
<DOType id='SAV' cdc='SAV'>
  <DA name='instMag' bType='Struct' type='Instant' fc='MX'/>
  <DA name='q' bType='Quality' fc='MX'/>
  <DA name='sVC' bType='Struct' type='ScaledCurrent' fc='CF'/>
  <DA name='units' bType='Struct' type='UnitCurrent' fc='CF'/>
</DOType>
<DOType id='HWYE' cdc='HWYE'>
  <SDO name='phsAHar' type='CMV' count='3'/>
  <DA name='hist' bType='INT32' fc='ST' count='4'/>
</DOType>
<DAType id='Originator'>
  <BDA name='orCat' bType='Enum' type='OrCat'/><BDA name='orIdent' bType='Octet64'/>
</DAType>
<DAType id='SBOw'><BDA name='ctlVal' bType='BOOLEAN'/></DAType>
<DAType id='Vector'>
  <BDA name='mag' bType='Struct' type='Analogue'/><BDA name='ang' bType='Struct' type='Floating'/>
</DAType>
<DAType id='Analogue'><BDA name='i' bType='INT32'/><BDA name='f' bType='FLOAT32'/></DAType>
<DAType id='Floating'><BDA name='f' bType='FLOAT32'/></DAType>
<DAType id='Instant'><BDA name='i' bType='INT32'/></DAType>
<DAType id='Unit'>
  <BDA name='SIUnit' bType='Enum' type='SIUnit'/><BDA name='multiplier' bType='Enum' type='Mult'/>
</DAType>
<DAType id='UnitCurrent'>
  <BDA name='SIUnit' bType='Enum' type='SIUnit'><Val>A</Val></BDA>
  <BDA name='multiplier' bType='Enum' type='Mult'/>
</DAType>
<DAType id='Scaled'>
  <BDA name='scaleFactor' bType='FLOAT32'/><BDA name='offset' bType='FLOAT32'/>
</DAType>
<DAType id='ScaledCurrent'>
  <BDA name='scaleFactor' bType='FLOAT32'><Val>0.001</Val></BDA>
  <BDA name='offset' bType='FLOAT32'><Val>0</Val></BDA>
</DAType>
<EnumType id='SIUnit'><EnumVal ord='5'>A</EnumVal><EnumVal ord='62'>Watts</EnumVal></EnumType>
<EnumType id='Mult'><EnumVal ord='0'/><EnumVal ord='3'>k</EnumVal></EnumType>
)";
    return text;
}

std::string const& stationNodes() {
    static std::string const text = R"(
<LN prefix='' lnClass='PTRC' inst='1' lnType='PTRC' desc='Trip logic'/>
<LN prefix='Q0' lnClass='XCBR' inst='1' lnType='XCBR'/>
<LN lnClass='MMXU' inst='1' lnType='MMXU'/>
<LN lnClass='TCTR' inst='1' lnType='TCTR'/>
<LN lnClass='MHAI' inst='1' lnType='MHAI'/>
)";
    return text;
}

}  // namespace TalTest
