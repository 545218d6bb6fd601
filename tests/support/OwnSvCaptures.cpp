#include <array>
#include <memory>
#include <random>
#include <string>

#include "support/Data.hpp"
#include "support/MergingUnit.hpp"
#include "support/OwnCaptureMakers.hpp"
#include "support/OwnCaptures.hpp"

namespace TalTest::OwnCaptureMakers {
namespace {

constexpr std::uint16_t kSamplesPerSecond = 4000;

Ethernet unitLink(unsigned unit) {
    std::string const last = std::to_string(10 + unit);
    return svEthernet().to("01:0c:cd:04:00:" + last).from("02:00:00:00:01:" + last);
}

std::vector<Sample> channels(std::minstd_rand& random, std::size_t count) {
    std::vector<Sample> out;
    for (std::size_t i = 0; i < count; ++i) {
        auto const value = static_cast<std::int32_t>(random() % 4'000'000) - 2'000'000;
        out.emplace_back(value, i % 4 == 3 ? 0x2000U : random() % 4096);
    }
    return out;
}

/// The message of a merging unit of this number, with one ASDU.
SvMessage messageOf(unsigned unit, std::size_t sample, std::minstd_rand& random) {
    SvMessage message =
        message92le("BAY" + std::to_string(unit) + "_MU",
                    static_cast<std::uint16_t>(sample % kSamplesPerSecond), channels(random, 8));
    message.appId = static_cast<std::uint16_t>(0x4000 + unit);
    return message;
}

Bytes svSignature() { return repeat(0x5A, kSignatureSize); }

}  // namespace

MadeCapture svMergingUnits() {
    StationDevices devices;
    devices.push_back(
        std::make_unique<MergingUnit>(MergingUnitSettings{.ethernet = unitLink(1).withVlan(0),
                                                          .appId = 0x4001,
                                                          .svID = "FEEDER1_MU",
                                                          .phase = 10 * microsecond}));
    devices.push_back(
        std::make_unique<MergingUnit>(MergingUnitSettings{.ethernet = unitLink(2).withVlan(100),
                                                          .appId = 0x4002,
                                                          .svID = "FEEDER2_MU",
                                                          .phase = 20 * microsecond}));
    devices.push_back(
        std::make_unique<MergingUnit>(MergingUnitSettings{.ethernet = unitLink(3),
                                                          .appId = 0x4003,
                                                          .svID = "BUSBAR_MU",
                                                          .datSet = "MU03LD0/LLN0$dsSamples",
                                                          .numAsdus = 8,
                                                          .numChannels = 12,
                                                          .withSampleTimes = true,
                                                          .phase = 30 * microsecond}));
    // Each sample time has one frame of the first two units, each eighth one of the third.
    CaptureMaker maker(CaptureVariant::nanoLittle);
    maker.addFrom(devices, 6 * (8 + 8 + 1));
    return maker.make();
}

MadeCapture svManyAsdus() {
    std::minstd_rand random(kOwnCaptureSeed);
    CaptureMaker maker;
    for (std::size_t sample = 0; sample < 3; ++sample) {
        for (unsigned count = 1; count <= 13; ++count) {
            SvMessage message = messageOf(count, sample, random);
            message.asdus.clear();
            for (unsigned number = 0; number < count; ++number) {
                Asdu asdu;
                asdu.svID = "MU" + std::to_string(count) + "_" + std::to_string(number);
                asdu.smpCnt = 3999 - sample;
                asdu.confRev = 1000 + number;
                asdu.seqData = samples(channels(random, 1 + number % 4));
                if (count % 2 == 0) asdu.datSet = "MULD0/LLN0$ds" + std::to_string(number);
                if (number % 2 == 0) asdu.refrTm = utcTime(stationStart, number << 16U);
                if (count % 3 != 0) asdu.smpRate = 4000 + number;
                if (count % 4 == 0) asdu.smpMod = number % 3;
                message.asdus.push_back(asdu);
            }
            maker.add(unitLink(count).withVlan(static_cast<std::uint16_t>(count)), message);
        }
    }
    return maker.make();
}

MadeCapture svTwelveOctets() {
    std::minstd_rand random(kOwnCaptureSeed);
    CaptureMaker maker;
    for (std::size_t sample = 0; sample < 5; ++sample) {
        SvMessage message = messageOf(1, sample, random);
        message.asdus.assign(13, message.asdus.front());
        for (std::size_t number = 0; number < message.asdus.size(); ++number) {
            message.asdus[number].svID = "LINE" + std::to_string(number);
            message.asdus[number].seqData = concat({bigEndian(random(), 4), utcTime(stationStart)});
        }
        maker.add(unitLink(1).withVlan(0), message);
    }
    return maker.make();
}

MadeCapture svHsr() {
    std::minstd_rand random(kOwnCaptureSeed);
    CaptureMaker maker;
    for (std::uint16_t sample = 0; sample < 10; ++sample) {
        for (unsigned const unit : {1U, 2U}) {
            Ethernet const link = unit == 1 ? unitLink(1) : unitLink(2).withVlan(9);
            SvMessage const message = messageOf(unit, sample, random);
            for (char const way : {'A', 'B'}) maker.add(link.withHsr(way, sample), message);
        }
    }
    return maker.make();
}

MadeCapture svPrp() {
    std::minstd_rand random(kOwnCaptureSeed);
    CaptureMaker maker;
    std::size_t sample = kSamplesPerSecond - 4U;
    // The last ones look like elements, which change nothing outside an ASDU.
    constexpr std::array<std::uint16_t, 10> sequences = {0xFFFE, 0xFFFF, 0x0000, 0x0001, 0x6103,
                                                         0x6003, 0x3003, 0x8105, 0x82FF, 0x88BA};
    for (std::uint16_t const sequence : sequences) {
        SvMessage const message = messageOf(1, sample++, random);
        for (char const lan : {'A', 'B'})
            maker.add(unitLink(1).withVlan(0).withPrp(lan, sequence), message);
    }
    return maker.make();
}

MadeCapture svSigned() {
    std::minstd_rand random(kOwnCaptureSeed);
    CaptureMaker maker;
    for (std::size_t sample = 0; sample < 4; ++sample) {
        SvMessage message = messageOf(1, sample, random);
        message.asdus.front().refrTm = utcTime(stationStart, 0x123456);
        message.asdus.front().smpRate = kSamplesPerSecond;
        maker.add(unitLink(1), message);
        maker.add(unitLink(1).withVlan(50), message);
        message.reserved2 = kSignatureSize;
        message.trailing = svSignature();
        maker.add(unitLink(1), message);
    }
    return maker.make();
}

MadeCapture svTrailersAsElements() {
    std::minstd_rand random(kOwnCaptureSeed);
    CaptureMaker maker;
    constexpr std::size_t prpTrailerSize = 6;
    SvMessage const plain = messageOf(1, 1, random);
    std::string const stream = streamText(unitLink(1), plain);
    maker.add(unitLink(1), plain);
    // 80 04 and four octets: noASDU, of which the first octet counts.
    for (char const lan : {'A', 'B'}) maker.add(unitLink(1).withPrp(lan, 0x8004), plain);
    // A2 01 and one octet: a sequence of ASDU.
    for (char const lan : {'A', 'B'}) {
        Bytes const frame = svFrame(unitLink(1).withPrp(lan, 0xA201), plain);
        maker.add(stream, frame.size() - prpTrailerSize, frame);
    }
    SvMessage message = plain;
    message.reserved2 = kSignatureSize;
    message.trailing = ber(0xA2, {});
    Bytes const frame = svFrame(unitLink(1), message);
    maker.add(stream, frame.size() - 2, frame);
    // An ASDU after the savPdu: its name is the last.
    message.trailing = ber(0x30, ber(0x80, "SIGNED"));
    SvMessage readAs = plain;
    readAs.asdus.front().svID = "SIGNED";
    maker.add(streamText(unitLink(1), readAs),
              payloadOffset(unitLink(1)) + 8 + sequenceOffset(message),
              svFrame(unitLink(1), message));
    return maker.make();
}

MadeCapture svOddElements() {
    std::minstd_rand random(kOwnCaptureSeed);
    CaptureMaker maker;
    auto const add = [&](auto&& change) {
        SvMessage message = messageOf(1, 7, random);
        change(message);
        maker.add(unitLink(1), message);
    };
    add([](SvMessage&) {});
    add([](SvMessage& message) { message.omitNoASDU = true; });
    add([](SvMessage& message) { message.security = Bytes{1, 2, 3}; });
    add([](SvMessage& message) { message.asdus.front().svID.reset(); });
    add([](SvMessage& message) { message.asdus.front().smpCnt.reset(); });
    add([](SvMessage& message) { message.asdus.front().confRev.reset(); });
    add([](SvMessage& message) { message.asdus.front().smpSynch.reset(); });
    add([](SvMessage& message) { message.asdus.front().seqData.reset(); });
    add([](SvMessage& message) { message.asdus.front().extraFirst = ber(0x9F, {1}); });
    add([](SvMessage& message) { message.asdus.front().extraLast = ber(0x8B, {1, 2}); });
    add([](SvMessage& message) { message.extraBeforeSequence = ber(0x83, "no svID here"); });
    add([](SvMessage& message) { message.asdus.front().seqData = Bytes{}; });
    return maker.make();
}

}  // namespace TalTest::OwnCaptureMakers
