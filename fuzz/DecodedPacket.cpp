#include "fuzz/DecodedPacket.hpp"

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <tuple>
#include <vector>

#include "fuzz/Check.hpp"
#include "index/PlainDecode.hpp"

namespace TalFuzz {

using namespace TalIec61850Parser;
using namespace TalTest;

namespace {

auto fieldsOf(GoosePdu const& pdu) {
    return std::tie(pdu.gocbRef, pdu.timeAllowedToLive, pdu.datSet, pdu.goID, pdu.t, pdu.stNum,
                    pdu.sqNum, pdu.simulation, pdu.confRev, pdu.ndsCom, pdu.numDatSetEntries,
                    pdu.allData);
}

auto fieldsOf(ASDUData const& asdu) {
    return std::tie(asdu.svID, asdu.datSet, asdu.smpCnt, asdu.confRev, asdu.refrTm, asdu.smpSynch,
                    asdu.smpRate);
}

bool areSame(ASDUData const& a, ASDUData const& b) {
    return fieldsOf(a) == fieldsOf(b) &&
           std::equal(a.samples.begin(), a.samples.end(), b.samples.begin(), b.samples.end(),
                      [](SampleData const& x, SampleData const& y) {
                          return x.value == y.value && x.quality == y.quality;
                      });
}

void addBooleans(Bytes const& level, std::vector<float>& booleans) {
    for (PlainElement const& element : plainElements(level)) {
        if (element.tag == 0x83 && element.value.size() == 1)
            booleans.push_back(element.value[0] == 0 ? 0.0F : 1.0F);
        if (element.tag == 0x82) addBooleans(element.value, booleans);
    }
}

}  // namespace

std::vector<float> plainBooleans(Bytes const& allData) {
    std::vector<float> booleans;
    addBooleans(allData, booleans);
    return booleans;
}

bool isGooseDecodedRightly(std::string const& path, Bytes const& octets, std::uint64_t position) {
    GoosePdu const pdu = GooseParser::parseGoosePDUFromFile(path, position);
    require(fieldsOf(pdu) == fieldsOf(expectedGoosePdu(octets, position)), "the goosePdu");
    require(GooseParser::parseBooleanValues(pdu.allData) == plainBooleans(pdu.allData),
            "the booleans");
    return fieldsOf(pdu) != fieldsOf(GoosePdu());
}

bool isSvDecodedRightly(std::string const& path, Bytes const& octets, std::uint64_t position) {
    std::vector<ASDUData> const asdus = SvParser::parseASDUFromFile(path, position);
    std::vector<ASDUData> const expected = expectedAsdus(octets, position);
    require(std::equal(asdus.begin(), asdus.end(), expected.begin(), expected.end(), areSame),
            "the ASDUs");
    return !asdus.empty();
}

}  // namespace TalFuzz
