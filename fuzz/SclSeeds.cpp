// Seeds that are descriptions of stations.

#include <string>

#include "fuzz/Seeds.hpp"
#include "scl/SclText.hpp"
#include "support/Data.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

/// The smallest description that has all kinds of elements that are read.
std::string smallStation(std::string const& control, std::string const& inside) {
    return "<SCL version='2007'><Communication><SubNetwork><ConnectedAP iedName='I' apName='A' "
           "redProt='prp'><GSE ldInst='L' cbName='g'><Address><P type='MAC-Address'>"
           "01-0C-CD-01-00-01</P><P type='APPID'>0001</P><P type='VLAN-ID'>00A</P></Address>"
           "<MaxTime>1000</MaxTime></GSE></ConnectedAP></SubNetwork></Communication>"
           "<IED name='I'><AccessPoint name='A'><Server><LDevice inst='L'><LN0 lnClass='LLN0' "
           "inst='' lnType='T'><DataSet name='d'><FCDA ldInst='L' lnClass='LLN0' doName='A' "
           "fc='MX'/><FCDA ldInst='L' lnClass='LLN0' doName='A.s' daName='m.i' fc='MX' ix='1'/>"
           "</DataSet>" +
           control +
           "<DOI name='A' desc='x'><SDI name='s' ix='1'><SDI name='sVC'><DAI name='scaleFactor'>"
           "<Val>2</Val></DAI></SDI></SDI></DOI><Inputs><ExtRef iedName='I' ldInst='L' "
           "lnClass='LLN0' doName='A' srcCBName='g'/><ExtRef iedName='@' ldInst='L' "
           "lnClass='LLN0' doName='A'/></Inputs></LN0></LDevice></Server></AccessPoint></IED>"
           "<DataTypeTemplates><LNodeType id='T'><DO name='A' type='O'/></LNodeType>"
           "<DOType id='O'><SDO name='s' type='P' count='2'/></DOType><DOType id='P'>"
           "<DA name='m' bType='Struct' type='M' fc='MX'/><DA name='q' bType='Quality' fc='MX'/>" +
           inside +
           "</DOType><DAType id='M'><BDA name='i' "
           "bType='INT32'/></DAType></DataTypeTemplates></SCL>";
}

}  // namespace

void writeSclSeeds(Seeds seeds) {
    auto const write = [&](std::string const& text) {
        seeds.write(Bytes(text.begin(), text.end()));
    };
    std::string const goose =
        "<GSEControl name='g' appID='i' datSet='d' confRev='1'>"
        "<IEDName>I</IEDName></GSEControl>";
    std::string const sv =
        "<SampledValueControl name='g' smvID='i' datSet='d' smpRate='80' "
        "nofASDU='1'><SmvOpts refreshTime='true'/></SampledValueControl>";
    write(smallStation(goose, ""));
    write(smallStation(sv, ""));
    write(smallStation(goose + sv, "<SDO name='ring' type='O'/>"));
    write(smallStation(goose + goose, "<DA name='a' bType='INT8' fc='MX' count='40000'/>"));
    std::string const small = smallStation(goose, "");
    // Both entries of the data set, as a message has them.
    Bytes const element = dataStructure({dataStructure({dataInteger(5)}), dataQuality(0)});
    std::string const separated = small + "<!--values-->";
    seeds.write(concat({Bytes(separated.begin(), separated.end()),
                        dataStructure({dataArray({element, element})}), dataInteger(-1)}));
    write(small.substr(0, small.size() / 2));
    std::string wide = "\xFF\xFE";
    for (char const each : small) {
        wide.append({each, '\0'});
    }
    write(wide);
    write("<?xml version='1.0' encoding='ISO-8859-1'?>" + small);
    SclText station;
    station.ieds = iedText(
        "IED1", node0Text(gooseText("<FCDA ldInst='LD0' lnClass='MMXU' lnInst='1' doName='A' "
                                    "fc='MX'/>")) +
                    stationNodes());
    station.templates = stationTypes();
    write(station.text());
}

}  // namespace TalFuzz
