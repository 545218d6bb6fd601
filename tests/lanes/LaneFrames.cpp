#include "lanes/LaneFrames.hpp"

#include <TalIec61850Parser/store/GooseIdentifer.hpp>
#include <TalIec61850Parser/store/SvIdentifer.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <optional>

#include "capture/Criteria.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {

using namespace TalIec61850Parser;
using TalIec61850::GooseIdentifer;
using TalIec61850::HsrInfo;
using TalIec61850::PrpInfo;
using TalIec61850::SvIdentifer;
using TalIec61850::VlanInfo;

namespace {

using Frames = std::vector<NamedFrame>;
using SvChange = std::function<void(SvMessage&, Asdu&)>;
using GooseChange = std::function<void(GooseMessage&)>;

SvMessage severalAsdus() {
    SvMessage message;
    Asdu asdu;
    asdu.smpRate = 4800;
    asdu.seqData = Bytes(8);
    message.asdus = {asdu, asdu, asdu};
    message.asdus[1].smpCnt = 1;
    message.asdus[2].smpCnt = 2;
    message.asdus[2].svID = "MU02";
    return message;
}

GooseMessage structuredGoose() {
    GooseMessage message;
    message.setData({dataStructure({dataBoolean(true), dataInteger(-5)}), dataQuality()});
    return message;
}

/// An SV frame of one small ASDU, which `change` may do anything to.
Bytes svWith(SvChange const& change) {
    SvMessage message;
    message.asdus[0].seqData = Bytes(8);
    change(message, message.asdus[0]);
    return svFrame(svEthernet(), message);
}

Bytes gooseWith(GooseChange const& change) {
    GooseMessage message;
    change(message);
    return gooseFrame({}, message);
}

/// A frame of anything after the eight octets that begin every GOOSE and SV frame.
Bytes frameAround(std::uint16_t etherType, Bytes const& pdu) {
    return ethernetFrame(etherType == etherTypeGoose ? Ethernet() : svEthernet(), etherType,
                         apdu({.appId = 1}, pdu));
}

Bytes times(std::size_t count, Bytes const& element) {
    Bytes all;
    for (std::size_t i = 0; i < count; ++i) append(all, element);
    return all;
}

void addSmpCnts(Frames& frames) {
    for (std::size_t octets = 1; octets <= 5; ++octets)
        frames.push_back(
            {"smpCnt of " + std::to_string(octets) + " octets", svWith([&](SvMessage&, Asdu& asdu) {
                 asdu.smpCnt = {0x1234, octets};
             })});
    Bytes const number = {0x82, 0x02, 0x12, 0x34};
    auto const in = [&frames](char const* name, SvChange const& change) {
        frames.push_back({name, svWith(change)});
    };
    in("no smpCnt", [](SvMessage&, Asdu& asdu) { asdu.smpCnt.reset(); });
    in("empty smpCnt", [](SvMessage&, Asdu& asdu) {
        asdu.smpCnt.reset();
        asdu.extraFirst = ber(0x82, {});
    });
    in("two smpCnt", [&](SvMessage&, Asdu& asdu) { asdu.extraLast = number; });
    in("two smpCnt, the second empty",
       [](SvMessage&, Asdu& asdu) { asdu.extraLast = ber(0x82, {}); });
    in("smpCnt only outside the ASDU", [&](SvMessage& message, Asdu& asdu) {
        asdu.smpCnt.reset();
        message.extraBeforeSequence = number;
        message.extraInSequence = number;
    });
    in("smpCnt behind the ASDU", [&](SvMessage& message, Asdu&) {
        Asdu bare;
        bare.extraFirst = times(3, number);
        bare.lengthForm = LengthForm::indefinite;
        message.asdus.push_back(bare);
    });
    frames.push_back({"smpCnt beside an ASDU that is the PDU",
                      frameAround(etherTypeSampledValues,
                                  concat({asduElement(Asdu{}), number, ber(0x80, "MU09")}))});
}

void addOddSv(Frames& frames) {
    auto const in = [&frames](char const* name, SvChange const& change) {
        frames.push_back({name, svWith(change)});
    };
    in("wide noASDU",
       [](SvMessage& message, Asdu&) { message.noASDU = MinimalUnsigned(0x1234, 4); });
    in("no noASDU", [](SvMessage& message, Asdu&) { message.omitNoASDU = true; });
    in("two noASDU", [](SvMessage& message, Asdu&) {
        message.extraBeforeSequence = concat({ber(0x80, {7}), ber(0x80, {})});
    });
    in("empty svID", [](SvMessage&, Asdu& asdu) { asdu.svID = ""; });
    in("two svID", [](SvMessage&, Asdu& asdu) { asdu.extraLast = ber(0x80, "MU07"); });
    in("confRev of five octets", [](SvMessage&, Asdu& asdu) { asdu.confRev = {1, 5}; });
    in("smpRate of one octet", [](SvMessage&, Asdu& asdu) { asdu.smpRate = {80, 1}; });
    in("smpRate of three octets", [](SvMessage&, Asdu& asdu) { asdu.smpRate = {4800, 3}; });
    in("savPdu in the ASDU", [](SvMessage&, Asdu& asdu) { asdu.extraLast = savPdu({}); });
    in("savPdu before the sequence",
       [](SvMessage& message, Asdu&) { message.extraBeforeSequence = savPdu({}); });
    in("security of nested elements",
       [](SvMessage& message, Asdu&) { message.security = savPdu({}); });
    in("indefinite PDU",
       [](SvMessage& message, Asdu&) { message.pduLengthForm = LengthForm::indefinite; });
    in("indefinite sequence",
       [](SvMessage& message, Asdu&) { message.sequenceLengthForm = LengthForm::indefinite; });
    in("lengths of four octets", [](SvMessage& message, Asdu& asdu) {
        message.pduLengthForm = message.sequenceLengthForm = LengthForm::fourOctets;
        asdu.lengthForm = LengthForm::threeOctets;
    });
    in("damaged ASDU", [](SvMessage&, Asdu& asdu) { asdu.extraLast = {0x87, 0x7F, 1, 2, 3}; });
    in("damaged ASDU before another", [](SvMessage& message, Asdu& asdu) {
        asdu.extraLast = {0x87, 0x84, 0x00, 1, 2};
        message.asdus.push_back(Asdu{});
    });
    in("sequence and no ASDU", [](SvMessage& message, Asdu&) { message.asdus.clear(); });
    frames.push_back({"savPdu twice", frameAround(etherTypeSampledValues,
                                                  concat({savPdu({}), savPdu(severalAsdus())}))});
    frames.push_back(
        {"GOOSE under the type of SV", frameAround(etherTypeSampledValues, goosePdu({}))});
    frames.push_back({"empty savPdu", frameAround(etherTypeSampledValues, ber(0x60, {}))});
    frames.push_back({"noASDU alone", frameAround(etherTypeSampledValues, ber(0x80, {3}))});
}

void addOddGoose(Frames& frames) {
    auto const in = [&frames](char const* name, GooseChange const& change) {
        frames.push_back({name, gooseWith(change)});
    };
    in("no names", [](GooseMessage& message) {
        message.gocbRef.reset();
        message.datSet.reset();
        message.goID.reset();
    });
    in("empty names",
       [](GooseMessage& message) { message.gocbRef = message.datSet = message.goID = ""; });
    in("name of no text", [](GooseMessage& message) { message.goID = std::string("A\0\xFF", 3); });
    in("two goID", [](GooseMessage& message) { message.extraBeforeData = ber(0x83, "other"); });
    in("confRev of five octets",
       [](GooseMessage& message) { message.confRev = MinimalUnsigned(5, 5); });
    in("empty confRev", [](GooseMessage& message) {
        message.confRev.reset();
        message.extraFirst = ber(0x88, {});
    });
    in("no simulation", [](GooseMessage& message) { message.simulation.reset(); });
    in("primitive allData", [](GooseMessage& message) { message.allDataTag = 0x8B; });
    in("goosePdu in allData", [](GooseMessage& message) { message.allData = goosePdu({}); });
    in("goosePdu in a primitive array",
       [](GooseMessage& message) { message.allData = ber(0x81, ber(0x82, goosePdu({}))); });
    in("goosePdu before gocbRef", [](GooseMessage& message) { message.extraFirst = goosePdu({}); });
    in("fields of allData behind it",
       [](GooseMessage& message) { message.extraLast = ber(0x80, "last"); });
    in("empty allData", [](GooseMessage& message) { message.allData = Bytes{}; });
    in("indefinite PDU",
       [](GooseMessage& message) { message.pduLengthForm = LengthForm::indefinite; });
    in("damaged allData", [](GooseMessage& message) { message.allData = {0x83, 0x7F, 0x00}; });
    in("damaged allData and more behind it", [](GooseMessage& message) {
        message.allData = {0x83, 0x85, 0x00};
        message.extraLast = ber(0x88, {0x07});
    });
    frames.push_back(
        {"goosePdu twice", frameAround(etherTypeGoose, concat({goosePdu({}), goosePdu({})}))});
    frames.push_back({"savPdu under the type of GOOSE", frameAround(etherTypeGoose, savPdu({}))});
    frames.push_back({"goosePdu in a sequence in one",
                      frameAround(etherTypeGoose, ber(0x30, ber(0x30, goosePdu({}))))});
    frames.push_back({"empty goosePdu", frameAround(etherTypeGoose, ber(0x61, {}))});
    frames.push_back({"octet string alone", frameAround(etherTypeGoose, ber(0x04, Bytes(20)))});
    frames.push_back({"PDU that claims more than there is",
                      frameAround(etherTypeGoose, berClaiming(0x61, {0x70}, Bytes(30)))});
    frames.push_back({"deep nesting", frameAround(etherTypeGoose, nested(0xA1, 30, goosePdu({})))});
}

void addElementCounts(Frames& frames) {
    for (std::size_t const count : {47U, 48U, 49U, 50U, 51U}) {
        std::string const elements = std::to_string(count) + " elements";
        Bytes const empty = times(count, {0x04, 0x00});
        frames.push_back({elements + " before gocbRef",
                          gooseWith([&](GooseMessage& message) { message.extraFirst = empty; })});
        frames.push_back({elements + " before the sequence",
                          svWith([&](SvMessage& message, Asdu&) { message.extraFirst = empty; })});
        frames.push_back({elements + " before the PDU",
                          frameAround(etherTypeSampledValues, concat({empty, savPdu({})}))});
        frames.push_back({elements + " behind the PDU",
                          svWith([&](SvMessage& message, Asdu&) { message.trailing = empty; })});
    }
}

void addTails(Frames& frames) {
    auto const behind = [&frames](std::string const& name, Bytes const& tail) {
        frames.push_back({name + " behind GOOSE",
                          gooseWith([&](GooseMessage& message) { message.trailing = tail; })});
        frames.push_back({name + " behind SV",
                          svWith([&](SvMessage& message, Asdu&) { message.trailing = tail; })});
    };
    for (std::size_t const size : {1U, 2U, 3U, 4U, 6U, 97U, 98U, 99U, 100U, 140U})
        behind(std::to_string(size) + " octets of FF", repeat(0xFF, size));
    behind("octet string", ber(0x04, "abcd"));
    behind("octet string and a damaged element", {0x04, 0x01, 0x00, 0x05, 0x7F});
    behind("svID", ber(0x80, "MU08"));
    behind("ASDU", asduElement(Asdu{}));
    behind("empty ASDU and smpCnt", {0x30, 0x00, 0x82, 0x02, 0x77, 0x77});
    behind("another goosePdu", goosePdu({}));
    behind("element with a long length", {0x04, 0x82, 0x00, 0x02, 0x01, 0x02});
    behind("element with too long a length", {0x04, 0x82, 0x01, 0x02, 0x01, 0x02});
    behind("end of a PRP trailer", {0x88, 0xFB});
    behind("end of a PRP trailer of LAN B", {0xFF, 0xFF, 0xBF, 0xFF, 0x88, 0xFB});
}

void addShort(Frames& frames) {
    Bytes const goose = gooseFrame(Ethernet().withVlan(5).withHsr('B'), {});
    for (std::size_t size = 14; size <= 40; ++size)
        frames.push_back({"first " + std::to_string(size) + " octets", prefix(goose, size)});
    frames.push_back({"GOOSE header and one octet", frameAround(etherTypeGoose, {0x61})});
    frames.push_back({"SV header alone", frameAround(etherTypeSampledValues, {})});
}

GooseIdentifer gooseVlan(std::uint16_t id) {
    auto entry = anyStream<GooseIdentifer>();
    entry.vlan.emplace().vlanId = id;
    return entry;
}

Filter both(GooseIdentifer const& goose, SvIdentifer const& sv) {
    Filter filter;
    filter.gooseFilters = {goose};
    filter.svFilters = {sv};
    return filter;
}

/// A filter of one member that both kinds of stream have.
template <typename Member, typename Value>
Filter ofBoth(std::optional<Member> GooseIdentifer::*inGoose,
              std::optional<Member> SvIdentifer::*inSv, Value const& value) {
    return both(wanted(inGoose, value), wanted(inSv, value));
}

}  // namespace

std::vector<NamedFrame> deviceFrames() {
    GooseMessage signedGoose;
    signedGoose.trailing = repeat(0xC3, 32);
    SvMessage signedSv;
    signedSv.trailing = repeat(0x99, 24);
    Asdu bare;
    bare.seqData = Bytes(4);
    SvMessage small;
    small.asdus = {bare};
    return {
        {"GOOSE", gooseFrame({}, {})},
        {"GOOSE, VLAN and HSR", gooseFrame(Ethernet().withVlan(5).withHsr('B'), structuredGoose())},
        {"GOOSE, PRP A", gooseFrame(Ethernet().withPadding().withPrp('A'), {})},
        {"GOOSE, VLAN and PRP B", gooseFrame(Ethernet().withVlan(1).withPrp('B', 0x0102), {})},
        {"GOOSE, signed", gooseFrame({}, signedGoose)},
        {"SV", svFrame(svEthernet(), message92le("MU01", 1234))},
        {"SV, VLAN and PRP B", svFrame(svEthernet().withVlan(7).withPrp('B'), severalAsdus())},
        {"SV, HSR A", svFrame(svEthernet().withHsr('A'), severalAsdus())},
        {"SV, padded", svFrame(svEthernet().withPadding(), small)},
        {"SV, padded and PRP A", svFrame(svEthernet().withPadding().withPrp('A', 77), small)},
        {"SV, signed and PRP A", svFrame(svEthernet().withPrp('A'), signedSv)},
    };
}

std::vector<NamedFrame> oddFrames() {
    Frames frames;
    addSmpCnts(frames);
    addOddSv(frames);
    addOddGoose(frames);
    addElementCounts(frames);
    addTails(frames);
    addShort(frames);
    return frames;
}

std::vector<NamedFrame> allFrames() {
    Frames frames = deviceFrames();
    Frames odd = oddFrames();
    frames.insert(frames.end(), std::make_move_iterator(odd.begin()),
                  std::make_move_iterator(odd.end()));
    return frames;
}

std::vector<NamedFilter> laneFilters() {
    auto const accepts =
        both(wanted(&GooseIdentifer::goID, "RELAY1_gcb1"), wanted(&SvIdentifer::svID, "MU01"));
    Filter onlyGoose;
    onlyGoose.parseSv = false;
    Filter onlySv;
    onlySv.parseGoose = false;
    auto hsr = anyStream<SvIdentifer>();
    hsr.hsr.emplace().lanId = 'A';
    auto prp = anyStream<SvIdentifer>();
    prp.prp.emplace().lanId = 'A';
    // What one protocol rejects, the other one may want.
    Filter anotherGoose;
    anotherGoose.gooseFilters = {wanted(&GooseIdentifer::srcMac, "00:00:00:00:00:00")};
    Filter anotherSv;
    anotherSv.svFilters = {wanted(&SvIdentifer::dstMac, "00:00:00:00:00:00")};
    std::uint64_t const otherAppId = 0x1234;
    std::uint8_t const bit = 1;
    std::uint32_t const otherRevision = 2;
    return {
        {"everything", {}},
        {"names", accepts},
        {"no SV", onlyGoose},
        {"no GOOSE", onlySv},
        {"another source",
         ofBoth(&GooseIdentifer::srcMac, &SvIdentifer::srcMac, "00:00:00:00:00:00")},
        {"another source of GOOSE", anotherGoose},
        {"another destination of SV", anotherSv},
        {"HSR A, VLAN 5", both(gooseVlan(5), hsr)},
        {"PRP A, VLAN 1", both(gooseVlan(1), prp)},
        {"another APPID", ofBoth(&GooseIdentifer::appId, &SvIdentifer::appId, otherAppId)},
        {"simulated", ofBoth(&GooseIdentifer::reserved1Bit0, &SvIdentifer::reserved1Bit0, bit)},
        {"another confRev", ofBoth(&GooseIdentifer::confRev, &SvIdentifer::confRev, otherRevision)},
        {"another gocbRef, MU02",
         both(wanted(&GooseIdentifer::gocbRef, "other"), wanted(&SvIdentifer::svID, "MU02"))},
        {"no simulation element",
         both(wanted(&GooseIdentifer::simulation, false), wanted(&SvIdentifer::svID, ""))},
    };
}

}  // namespace TalTest
