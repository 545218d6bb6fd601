#include <random>
#include <string>

#include "support/OtherTraffic.hpp"
#include "support/OwnCaptureMakers.hpp"
#include "support/OwnCaptures.hpp"

namespace TalTest::OwnCaptureMakers {
namespace {

GooseMessage gooseOf(unsigned relay, std::uint32_t sequence) {
    GooseMessage message;
    message.appId = static_cast<std::uint16_t>(relay);
    message.gocbRef = "NODE" + std::to_string(relay) + "LD0/LLN0$GO$gcb1";
    message.goID = "NODE" + std::to_string(relay);
    message.sqNum = sequence;
    message.setData({dataStructure({dataBoolean(true), dataQuality()}), dataFloat(1.5F)});
    return message;
}

Ethernet gooseLink(unsigned relay) {
    return Ethernet().from("02:00:00:00:02:" + std::to_string(10 + relay)).withVlan(0);
}

SvMessage svOf(std::uint16_t sample) {
    return message92le("NODE_MU", sample, {{sample, 0}, {-sample, 0x2000}});
}

/// The same frames and times in each variant; the times are whole microseconds.
MadeCapture mixed(CaptureVariant variant) {
    CaptureMaker maker(variant);
    for (std::uint16_t frame = 0; frame < 12; ++frame) {
        maker.at(frame * 250 * microsecond + 999'000 * microsecond);
        maker.add(gooseLink(1 + frame % 2U), gooseOf(1 + frame % 2U, frame));
        maker.addOther(frame % 2 == 0 ? udpDatagram(frame) : arpRequest(frame));
        maker.add(svEthernet().withVlan(3), svOf(frame));
    }
    return maker.make();
}

/// Four streams; `offset` is how much later than elsewhere frames arrive.
MadeCapture viewpoint(std::uint32_t first, std::uint32_t last, std::uint64_t offset) {
    CaptureMaker maker;
    for (std::uint32_t frame = first; frame < last; ++frame) {
        maker.at(frame * millisecond + offset);
        for (unsigned relay = 1; relay <= 3; ++relay)
            maker.add(gooseLink(relay), gooseOf(relay, frame));
        maker.add(svEthernet(), svOf(static_cast<std::uint16_t>(frame)));
        maker.addOther(arpRequest(frame));
    }
    return maker.make();
}

Bytes stackedTags(Bytes const& frame) {
    Bytes const serviceTag = {0x88, 0xA8, 0x00, 0x05};
    Bytes out = prefix(frame, 12);
    append(out, serviceTag);
    out.insert(out.end(), frame.begin() + 12, frame.end());
    return out;
}

}  // namespace

MadeCapture mixedMicroLittle() { return mixed(CaptureVariant::microLittle); }
MadeCapture mixedMicroBig() { return mixed(CaptureVariant::microBig); }
MadeCapture mixedNanoLittle() { return mixed(CaptureVariant::nanoLittle); }
MadeCapture mixedNanoBig() { return mixed(CaptureVariant::nanoBig); }

MadeCapture viewpointA() { return viewpoint(0, 15, 0); }
MadeCapture viewpointB() { return viewpoint(3, 20, 7 * microsecond); }

MadeCapture timesBackwards() {
    CaptureMaker maker;
    for (std::uint32_t frame = 0; frame < 12; ++frame) {
        maker.at((frame % 4 == 3 ? 1 : 12 - frame) * second + frame * microsecond);
        maker.add(gooseLink(1), gooseOf(1, frame));
        maker.at((frame % 3) * 100 * millisecond);
        maker.add(svEthernet(), svOf(static_cast<std::uint16_t>(frame)));
    }
    maker.addOther(arpRequest(1));
    return maker.make(11);
}

MadeCapture nothingToIndex() {
    CaptureMaker maker(CaptureVariant::microBig);
    for (std::uint32_t frame = 0; frame < 4; ++frame) {
        maker.addOther(arpRequest(frame)).addOther(udpDatagram(frame)).addOther(tcpSegment(frame));
        maker.addOther(spanningTreeHello()).addOther(ptpSync(frame));
        auto const sequence = static_cast<std::uint16_t>(0x6103 + frame);
        // PTP with the tags and trailers of redundant networks.
        maker.addOther(
            ethernetFrame(Ethernet().withVlan(5).withHsr('A', sequence), 0x88F7, repeat(0x61, 44)));
        maker.addOther(ethernetFrame(Ethernet().withPrp('B', sequence), 0x88F7, repeat(0xA2, 44)));
        // Service tags are not looked through.
        maker.addOther(stackedTags(gooseFrame(gooseLink(1), gooseOf(1, frame))));
        maker.addOther(stackedTags(svFrame(svEthernet(), svOf(0))));
        // No octet after the header of eight, and less.
        for (std::size_t const size : {std::size_t{22}, std::size_t{14}, std::size_t{13}}) {
            maker.addOther(prefix(gooseFrame(Ethernet(), gooseOf(1, frame)), size));
            maker.addOther(prefix(svFrame(svEthernet(), svOf(0)), size));
        }
        maker.addOther({});
    }
    return maker.make();
}

MadeCapture otherLinkType() {
    constexpr std::uint32_t linkTypeUser = 147;
    CaptureMaker maker(CaptureVariant::microBig, linkTypeUser);
    for (std::uint32_t frame = 0; frame < 20; ++frame) {
        maker.addOther(bigEndian(frame, 12 + frame % 2));
        // The link type is not looked at.
        if (frame % 5 == 0) maker.add(gooseLink(1), gooseOf(1, frame));
    }
    return maker.make();
}

MadeCapture nextGeneration() {
    std::vector<Bytes> frames;
    for (std::uint32_t frame = 0; frame < 3; ++frame)
        frames.push_back(gooseFrame(gooseLink(1), gooseOf(1, frame)));
    return {nextGenerationCapture(frames), {}};
}

}  // namespace TalTest::OwnCaptureMakers
