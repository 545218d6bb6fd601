#include "analysis/packet/PacketFrames.hpp"

#include <bit>
#include <limits>
#include <stdexcept>

#include "support/Apdu.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"

namespace TalTest {

using namespace TalIec61850Analysis;

namespace {

constexpr std::size_t kApduHeaderSize = 8;

}  // namespace

PlacedFrame placed(GooseMessage const& message, Ethernet const& ethernet) {
    return {gooseFrame(ethernet, message), payloadOffset(ethernet) + kApduHeaderSize};
}

PlacedFrame placed(SvMessage const& message, Ethernet const& ethernet) {
    return {svFrame(ethernet, message),
            payloadOffset(ethernet) + kApduHeaderSize + sequenceOffset(message)};
}

GoosePacket inspected(GooseMessage const& message, Ethernet const& ethernet) {
    PlacedFrame const goose = placed(message, ethernet);
    return decodeGoose(goose.frame, goose.offset);
}

SvPacket inspected(SvMessage const& message, Ethernet const& ethernet) {
    PlacedFrame const sv = placed(message, ethernet);
    return decodeSv(sv.frame, sv.offset);
}

GoosePacket inspectedData(Bytes const& allData) {
    GooseMessage message;
    message.allData = allData;
    return inspected(message);
}

DataValue onlyValue(Bytes const& element) {
    auto const packet = inspectedData(element);
    if (!packet.allData || packet.allData->size() != 1) throw std::runtime_error("not one value");
    return packet.allData->front();
}

std::vector<Bytes> everyKind() {
    auto const float64 = std::bit_cast<std::uint64_t>(-0.1);
    return {dataBoolean(true),
            dataBitString({0x80}, 6),
            dataBitString({0xC1, 0x08}, 3),
            dataBitString({}),
            dataInteger(-129),
            dataInteger(std::numeric_limits<std::int32_t>::min()),
            dataUnsigned(3'000'000'000),
            dataFloat(1.1F),
            dataFloat(-0.0F),
            ber(0x87, concat({{11}, bigEndian(float64, 8)})),
            dataOctetString({0x00, 0xFF}),
            dataVisibleString("closed"),
            ber(0x8C, {0x00, 0x00, 0x00, 0x01}),
            ber(0x8C, {0x05, 0x26, 0x5B, 0xFF, 0x39, 0x30}),
            ber(0x8D, {0x12}),
            ber(0x8E, {0x04, 0xA0}),
            ber(0x8F, {0x2B, 0x06, 0x01, 0x84, 0x0C}),
            ber(0x90, text("geöffnet")),
            dataUtcTime(1'700'000'000, 0xFFFFFF, 0xFF),
            dataStructure({dataBoolean(false), dataQuality(0x0010),
                           dataArray({dataInteger(1), dataInteger(2)}), dataStructure({})})};
}

PlacedFrame richGoose() {
    GooseMessage message;
    message.reserved1 = 0x8000;
    message.reserved2 = 0x0020;
    message.stNum = {70'000, 5};
    message.simulation = true;
    message.setData(everyKind());
    message.extraBeforeData = ber(0x8C, {0x01, 0x02});
    message.pduLengthForm = LengthForm::twoOctets;
    message.trailing = Bytes(32, 0xAB);
    return placed(message, Ethernet().withVlan(200, 5, true).withHsr('B', 77).withPrp('B', 99));
}

PlacedFrame richSv() {
    Asdu asdu;
    asdu.datSet = "MU01LD0/LLN0$PhsMeas";
    asdu.smpCnt = 3999;
    asdu.refrTm = utcTime(1'700'000'000, 0x800000, 0x2A);
    asdu.smpSynch = 5;
    asdu.smpRate = 80;
    asdu.seqData = samples({{-1, 0x1FFF}, {5, 0x2000}});
    asdu.smpMod = 1;
    asdu.extraLast = concat({ber(0x89, {1, 2, 3, 4, 5, 6, 7, 8}), ber(0x8F, {0x11})});
    SvMessage message;
    message.asdus = {asdu, asdu};
    message.asdus[1].svID = "MU02";
    message.asdus[1].smpCnt = 0;
    message.security = Bytes{0x30, 0x00};
    message.trailing = Bytes(4, 0xCD);
    return placed(message, svEthernet().withVlan(100).withHsr('A', 3));
}

std::vector<FaultKind> kinds(Faults const& faults) {
    std::vector<FaultKind> all;
    for (Fault const& fault : faults) all.push_back(fault.kind);
    return all;
}

}  // namespace TalTest
