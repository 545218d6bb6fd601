#include <array>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "support/OtherTraffic.hpp"
#include "support/OwnCaptureMakers.hpp"
#include "support/OwnCaptures.hpp"
#include "support/Relay.hpp"

namespace TalTest::OwnCaptureMakers {
namespace {

/// The message of a relay of this number, the state of which is `state`.
GooseMessage messageOf(unsigned relay, std::uint32_t state, std::uint32_t sequence) {
    std::string const device = "BAY" + std::to_string(relay) + "_PROT";
    GooseMessage message;
    message.appId = static_cast<std::uint16_t>(relay);
    message.gocbRef = device + "LD0/LLN0$GO$gcb1";
    message.datSet = device + "LD0/LLN0$dsTrip";
    message.goID = device;
    message.stNum = state;
    message.sqNum = sequence;
    message.t = utcTime(stationStart + state, 0x400000 * (state % 4));
    message.confRev = 100 + relay;
    message.setData({dataBoolean(state % 2 != 0), dataQuality(), dataInteger(state)});
    return message;
}

Ethernet relayLink(unsigned relay) {
    std::string const last = std::to_string(10 + relay);
    return Ethernet().to("01:0c:cd:01:00:" + last).from("02:00:00:00:02:" + last);
}

Bytes signature(std::uint8_t first = 0x5A) {
    Bytes octets(kSignatureSize);
    for (std::size_t i = 0; i < octets.size(); ++i)
        octets[i] = static_cast<std::uint8_t>(first + 7 * i);
    return octets;
}

/// What is known of a message of which nothing is read but its header.
GooseMessage headerAlone(unsigned relay) {
    return {.appId = static_cast<std::uint16_t>(relay),
            .gocbRef = std::nullopt,
            .datSet = std::nullopt,
            .goID = std::nullopt,
            .simulation = std::nullopt,
            .confRev = std::nullopt};
}

/// One value of every type; numbers as tshark shows them, within 32 bits and a sign.
std::vector<Bytes> everyType(std::minstd_rand& random) {
    auto const number = static_cast<std::int32_t>(random() % 2'000'000) - 1'000'000;
    auto const octet = static_cast<std::uint8_t>(random());
    auto const milliseconds = static_cast<std::uint32_t>(random() % 86'400'000);
    return {dataBoolean(octet % 2 != 0),
            dataBitString({static_cast<std::uint8_t>(octet & 0xC0)}, 6),
            dataQuality(0x0800),
            dataInteger(number),
            dataUnsigned(random() % 2'147'483'647),
            dataFloat(static_cast<float>(number % 1000) * 0.25F),
            dataDouble(static_cast<double>(number) * 0.125),
            dataOctetString({octet, 0x00, 0xFF}),
            dataVisibleString("state " + std::to_string(number)),
            dataBinaryTime(milliseconds),
            dataBinaryTime(milliseconds, 14'688),
            dataBcd(octet % 100),
            dataBooleanArray({static_cast<std::uint8_t>(octet & 0xF0)}, 4),
            dataObjectId({0x28, 0xCA, 0x22, 0x02}),
            dataMmsString("Q" + std::to_string(octet)),
            dataUtcTime(stationStart, static_cast<std::uint32_t>(random() % 0x1000000))};
}

/// The values and, around them, structures and arrays to the given depth.
std::vector<Bytes> nestedTypes(std::minstd_rand& random, unsigned depth) {
    std::vector<Bytes> values = everyType(random);
    for (unsigned level = 0; level < depth; ++level) {
        values.push_back(dataStructure({dataBoolean(true), values.back(), dataQuality()}));
        values.push_back(dataArray({dataInteger(level), dataInteger(-1)}));
    }
    values.push_back(dataStructure({}));
    values.push_back(dataArray({}));
    return values;
}

}  // namespace

MadeCapture gooseRetransmissions() {
    StationDevices devices;
    std::uint64_t const start = firstFault - 50 * millisecond;
    unsigned number = 0;
    for (Ethernet const& ethernet :
         {relayLink(1), relayLink(2).withVlan(0), relayLink(3).withVlan(10)}) {
        ++number;
        devices.push_back(
            std::make_unique<Relay>(RelaySettings{.ethernet = ethernet,
                                                  .appId = static_cast<std::uint16_t>(number),
                                                  .device = "FEEDER" + std::to_string(number),
                                                  .confRev = 10'000 * number,
                                                  .firstHeartbeat = start + number * millisecond,
                                                  .delay = number * 5 * millisecond,
                                                  .phase = number * 10 * microsecond}));
    }
    CaptureMaker maker;
    for (std::uint32_t round = 0; round < 6; ++round) {
        maker.addFrom(devices, 10);
        maker.addOther(arpRequest(round)).addOther(udpDatagram(round)).addOther(tcpSegment(round));
        maker.addOther(spanningTreeHello()).addOther(ptpSync(round));
    }
    return maker.make();
}

MadeCapture gooseEveryType() {
    std::minstd_rand random(kOwnCaptureSeed);
    CaptureMaker maker(CaptureVariant::nanoLittle);
    for (unsigned frame = 0; frame < 24; ++frame) {
        unsigned const relay = 1 + frame % 2;
        GooseMessage message = messageOf(relay, 1 + frame / 4, frame % 4);
        message.setData(nestedTypes(random, frame % 6));
        maker.add(relayLink(relay), message);
    }
    GooseMessage empty = messageOf(3, 1, 0);
    empty.setData({});
    maker.add(relayLink(3).withPadding(), empty);
    return maker.make();
}

MadeCapture gooseFiveOctetIntegers() {
    CaptureMaker maker;
    for (unsigned frame = 0; frame < 4; ++frame) {
        unsigned const relay = 1 + frame % 2;
        GooseMessage message = messageOf(relay, 1, frame);
        message.timeAllowedtoLive = {4000, 5};
        message.stNum = {1, 5};
        message.sqNum = {frame, 5};
        message.confRev = {100 + frame, 5};
        message.numDatSetEntries = {3, 5};
        maker.add(relayLink(relay).withVlan(10), message);
    }
    return maker.make();
}

MadeCapture gooseLongLengths() {
    CaptureMaker maker;
    for (LengthForm const pdu : {LengthForm::oneOctet, LengthForm::twoOctets}) {
        for (LengthForm const allData :
             {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets}) {
            GooseMessage message = messageOf(1, 1, 0);
            message.pduLengthForm = pdu;
            message.allDataLengthForm = allData;
            maker.add(relayLink(1), message);
            message.setData({dataVisibleString(std::string(100, 'x')), dataBoolean(true)});
            maker.add(relayLink(1), message);
        }
    }
    return maker.make();
}

MadeCapture gooseLongestLengths() {
    CaptureMaker maker;
    for (LengthForm const pdu : {LengthForm::threeOctets, LengthForm::fourOctets}) {
        GooseMessage message = messageOf(1, 1, 0);
        message.pduLengthForm = pdu;
        message.allDataLengthForm = pdu;
        maker.add(relayLink(1), message);
    }
    return maker.make();
}

MadeCapture gooseHsr() {
    CaptureMaker maker;
    for (std::uint16_t frame = 0; frame < 20; ++frame) {
        unsigned const relay = 1 + frame % 2;
        Ethernet const link = relay == 1 ? relayLink(1).withVlan(0) : relayLink(2).withVlan(5);
        GooseMessage const message = messageOf(relay, 1 + frame / 6, frame % 6);
        for (char const way : {'A', 'B'}) maker.add(link.withHsr(way, frame), message);
    }
    return maker.make();
}

MadeCapture goosePrp() {
    CaptureMaker maker;
    // The last ones look like elements, which change nothing outside a goosePdu.
    constexpr std::array<std::uint16_t, 12> sequences = {0xFFFE, 0xFFFF, 0x0000, 0x0001,
                                                         0x8004, 0xA201, 0x8203, 0x8701,
                                                         0xAB02, 0x3003, 0x8004, 0x88B8};
    for (std::uint16_t const sequence : sequences) {
        for (unsigned const relay : {1U, 2U}) {
            Ethernet const link = relay == 1 ? relayLink(1) : relayLink(2).withVlan(7);
            GooseMessage const message = messageOf(relay, 1, sequence);
            for (char const lan : {'A', 'B'}) maker.add(link.withPrp(lan, sequence), message);
        }
    }
    return maker.make();
}

MadeCapture gooseSigned() {
    CaptureMaker maker;
    for (std::uint32_t frame = 0; frame < 4; ++frame) {
        GooseMessage message = messageOf(1, 1, frame);
        maker.add(relayLink(1), message);
        maker.add(relayLink(1).withVlan(100), message);
        maker.add(relayLink(1).withVlan(4095, 7, true), message);
        message.reserved2 = kSignatureSize;
        message.trailing = signature();
        maker.add(relayLink(1), message);
        // Outside a goosePdu no element names a stream.
        message.trailing = concat({ber(0x82, "other"), ber(0x83, "names"), signature(0x30)});
        maker.add(relayLink(1), message);
    }
    return maker.make();
}

MadeCapture gooseTrailersAsElements() {
    CaptureMaker maker;
    constexpr std::size_t prpTrailerSize = 6;
    GooseMessage const plain = messageOf(1, 1, 0);
    maker.add(relayLink(1), plain);
    for (char const lan : {'A', 'B'}) {
        // 61 03 and three octets more: a goosePdu, the content of which ends at once.
        Ethernet const link = relayLink(1).withPrp(lan, 0x6103);
        Bytes const frame = gooseFrame(link, plain);
        maker.add(streamText(link, plain), frame.size() - prpTrailerSize, frame);
    }
    GooseMessage message = plain;
    message.reserved2 = kSignatureSize;
    message.trailing = ber(0x61, ber(0x82, "SIGNED/AS$datSet"));
    GooseMessage readAs = plain;
    readAs.datSet = "SIGNED/AS$datSet";
    Bytes const frame = gooseFrame(relayLink(1), message);
    maker.add(streamText(relayLink(1), readAs), frame.size() - message.trailing.size(), frame);
    // With nothing in it, it is the place of the packet all the same.
    message.trailing = ber(0x61, {});
    Bytes const other = gooseFrame(relayLink(1), message);
    maker.add(streamText(relayLink(1), plain), other.size() - 2, other);
    return maker.make();
}

MadeCapture goosePriorityTag() {
    CaptureMaker maker;
    for (std::uint32_t frame = 0; frame < 3; ++frame) {
        GooseMessage const message = messageOf(1, 1, frame);
        maker.add(relayLink(1), message);
        maker.add(relayLink(1).withVlan(0), message);
        maker.add(relayLink(1).withVlan(1), message);
    }
    return maker.make();
}

MadeCapture gooseOddElements() {
    CaptureMaker maker;
    auto const add = [&maker](auto&& change) {
        GooseMessage message = messageOf(1, 1, 0);
        change(message);
        maker.add(relayLink(1), message);
    };
    add([](GooseMessage&) {});
    add([](GooseMessage& message) { message.gocbRef.reset(); });
    add([](GooseMessage& message) { message.timeAllowedtoLive.reset(); });
    add([](GooseMessage& message) { message.datSet.reset(); });
    add([](GooseMessage& message) { message.goID.reset(); });
    add([](GooseMessage& message) { message.t.reset(); });
    add([](GooseMessage& message) { message.stNum.reset(); });
    add([](GooseMessage& message) { message.sqNum.reset(); });
    add([](GooseMessage& message) { message.simulation.reset(); });
    add([](GooseMessage& message) { message.confRev.reset(); });
    add([](GooseMessage& message) { message.ndsCom.reset(); });
    add([](GooseMessage& message) { message.numDatSetEntries.reset(); });
    add([](GooseMessage& message) { message.allData.reset(); });
    add([](GooseMessage& message) { message.extraFirst = ber(0x8C, {1, 2}); });
    add([](GooseMessage& message) { message.extraBeforeData = ber(0x9F, {3}); });
    add([](GooseMessage& message) { message.extraLast = ber(0xBF, ber(0x82, "not a name")); });
    Bytes const frame = ethernetFrame(relayLink(1).withPadding(), etherTypeGoose,
                                      apdu({.appId = 1}, ber(0x62, ber(0x80, "no goosePdu"))));
    maker.add(streamText(relayLink(1), headerAlone(1)), std::nullopt, frame);
    return maker.make();
}

MadeCapture gooseSnapped() {
    CaptureMaker maker;
    maker.snapTo(70);
    for (std::uint32_t frame = 0; frame < 10; ++frame) {
        unsigned const relay = 1 + frame % 2;
        maker.add(streamText(relayLink(relay), headerAlone(relay)), std::nullopt,
                  gooseFrame(relayLink(relay), messageOf(relay, 1, frame)));
    }
    return maker.make();
}

MadeCapture gooseCutLastRecord() {
    CaptureMaker maker;
    for (std::uint32_t frame = 0; frame < 8; ++frame) {
        GooseMessage message = messageOf(1 + frame % 2, 1, frame);
        message.setData({dataBoolean(true), dataFloat(141.5F)});
        maker.add(relayLink(1 + frame % 2), message);
    }
    return maker.make(3);
}

}  // namespace TalTest::OwnCaptureMakers
