#include "support/Station.hpp"

#include <algorithm>
#include <memory>

#include "support/MergingUnit.hpp"
#include "support/OtherTraffic.hpp"
#include "support/Relay.hpp"
#include "support/StationDevice.hpp"

namespace TalTest {
namespace {

constexpr std::uint16_t processBusVlan = 100;
constexpr std::uint16_t stationBusVlan = 200;

Ethernet processBus(char const* destination, char const* source) {
    return Ethernet().to(destination).from(source).withVlan(processBusVlan);
}

Ethernet stationBus(char const* destination, char const* source) {
    return Ethernet().to(destination).from(source).withVlan(stationBusVlan);
}

void addMergingUnits(StationDevices& devices) {
    auto const add = [&](MergingUnitSettings const& settings) {
        devices.push_back(std::make_unique<MergingUnit>(settings));
    };
    add({.ethernet = processBus("01:0c:cd:04:00:01", "02:00:00:00:01:01"),
         .appId = 0x4001,
         .svID = "FEEDER1_MU01",
         .phase = 10 * microsecond});
    add({.ethernet = processBus("01:0c:cd:04:00:02", "02:00:00:00:01:02"),
         .appId = 0x4002,
         .svID = "FEEDER2_MU02",
         .phase = 40 * microsecond});
    MergingUnitSettings busbar{
        .ethernet = processBus("01:0c:cd:04:00:03", "02:00:00:00:01:03").withPrp('A'),
        .appId = 0x4003,
        .svID = "BUSBAR_MU03",
        .phase = 70 * microsecond};
    add(busbar);
    busbar.ethernet.prpLan = 'B';
    busbar.phase = 73 * microsecond;
    add(busbar);
    add({.ethernet = processBus("01:0c:cd:04:00:04", "02:00:00:00:01:04"),
         .appId = 0x4004,
         .svID = "TRANSFORMER_MU04",
         .datSet = "MU04LD0/LLN0$dsSamples",
         .numAsdus = 8,
         .numChannels = 12,
         .withSampleTimes = true,
         .phase = 100 * microsecond});
}

void addRelays(StationDevices& devices) {
    auto const add = [&](RelaySettings const& settings) {
        devices.push_back(std::make_unique<Relay>(settings));
    };
    add({.ethernet = stationBus("01:0c:cd:01:00:01", "02:00:00:00:02:01"),
         .appId = 0x0001,
         .device = "FEEDER1_PROT",
         .firstHeartbeat = 5 * millisecond,
         .delay = 18 * millisecond,
         .phase = 120 * microsecond});
    add({.ethernet = stationBus("01:0c:cd:01:00:02", "02:00:00:00:02:02"),
         .appId = 0x0002,
         .device = "FEEDER2_PROT",
         .numPoints = 8,
         .firstHeartbeat = 35 * millisecond,
         .delay = 23 * millisecond,
         .phase = 130 * microsecond});
    add({.ethernet = stationBus("01:0c:cd:01:00:03", "02:00:00:00:02:03"),
         .appId = 0x0003,
         .device = "BUSBAR_PROT",
         .confRev = 10001,
         .numPoints = 16,
         .firstHeartbeat = 65 * millisecond,
         .delay = 12 * millisecond,
         .phase = 140 * microsecond});
    RelaySettings ring{
        .ethernet = stationBus("01:0c:cd:01:00:04", "02:00:00:00:02:04").withHsr('A'),
        .appId = 0x0004,
        .device = "TRANSFORMER_PROT",
        .confRev = 2,
        .firstHeartbeat = 95 * millisecond,
        .delay = 30 * millisecond,
        .phase = 150 * microsecond};
    add(ring);
    ring.ethernet.hsrLan = 'B';
    ring.phase = 155 * microsecond;
    add(ring);
}

void addOtherTraffic(StationDevices& devices) {
    auto const add = [&](std::uint64_t phase, std::uint64_t interval, auto build) {
        devices.push_back(std::make_unique<OtherTraffic>(phase, interval, build));
    };
    add(180 * microsecond, second, ptpSync);
    add(200 * microsecond, 500 * millisecond, arpRequest);
    add(210 * microsecond, 20 * millisecond, tcpSegment);
}

/// A device and what was written of it.
struct Sender {
    StationDevice* device;
    std::uint64_t packets = 0;
    std::uint64_t firstTime = 0, lastTime = 0;
    std::uint64_t firstPosition = 0, lastPosition = 0;
};

void sendNext(Sender& sender, CaptureWriter& writer) {
    std::uint64_t const time = sender.device->nextTime() + stationStart * second;
    sender.lastTime = time;
    sender.lastPosition = writer.nextRecordPosition();
    if (sender.packets++ == 0) {
        sender.firstTime = sender.lastTime;
        sender.firstPosition = sender.lastPosition;
    }
    writer.add(static_cast<std::uint32_t>(time / second), static_cast<std::uint32_t>(time % second),
               sender.device->send());
}

StationStream streamOf(Sender const& sender) {
    StationStream stream = *sender.device->stream();
    stream.packets = sender.packets;
    stream.firstTime = sender.firstTime;
    stream.lastTime = sender.lastTime;
    stream.firstPosition = sender.firstPosition;
    stream.lastPosition = sender.lastPosition;
    return stream;
}

StationSummary summarise(std::vector<Sender> const& senders, std::uint64_t size) {
    StationSummary summary;
    summary.size = size;
    for (Sender const& sender : senders) {
        summary.frames += sender.packets;
        if (!sender.device->stream()) {
            summary.otherFrames += sender.packets;
        } else if (sender.packets > 0) {
            summary.streams.push_back(streamOf(sender));
        }
    }
    std::sort(summary.streams.begin(), summary.streams.end(),
              [](auto const& a, auto const& b) { return a.firstTime < b.firstTime; });
    return summary;
}

}  // namespace

std::size_t StationSummary::streamCount(StationStream::Protocol protocol) const {
    return static_cast<std::size_t>(
        std::count_if(streams.begin(), streams.end(),
                      [&](StationStream const& stream) { return stream.protocol == protocol; }));
}

std::uint64_t StationSummary::packetCount(StationStream::Protocol protocol) const {
    std::uint64_t packets = 0;
    for (StationStream const& stream : streams) {
        if (stream.protocol == protocol) {
            packets += stream.packets;
        }
    }
    return packets;
}

StationSummary writeStation(std::ostream& out, CaptureVariant variant, std::uint64_t frames) {
    StationDevices devices;
    addMergingUnits(devices);
    addRelays(devices);
    addOtherTraffic(devices);
    std::vector<Sender> senders;
    for (auto const& device : devices) {
        senders.push_back({.device = device.get()});
    }

    CaptureWriter writer(out, variant);
    for (std::uint64_t frame = 0; frame < frames; ++frame) {
        auto const next =
            std::min_element(senders.begin(), senders.end(), [](Sender const& a, Sender const& b) {
                return a.device->nextTime() < b.device->nextTime();
            });
        sendNext(*next, writer);
    }
    return summarise(senders, writer.nextRecordPosition());
}

}  // namespace TalTest
