// A station whose capture has faults itself.

#include <cstddef>
#include <cstdint>
#include <string>

#include "support/FaultyCaptures.hpp"
#include "support/FaultyStation.hpp"
#include "support/PcapngMaker.hpp"

namespace TalTest {
namespace {

constexpr std::int64_t kNsPerMs = 1'000'000;
/// The messages of the relay are longer, the others are not.
constexpr std::uint32_t kSnapLength = 128;

/// The streams, in this order.
enum CapturedStream : std::size_t { captured1, captured2, captured3, otherRate, relay, nameless };

void addCapturedStreams(FaultyStation& station) {
    for (std::size_t unit = 1; unit <= 3; ++unit) {
        std::string const number = std::to_string(unit);
        station.add({.svID = "BAY4_MU0" + number,
                     .source = "02:00:00:00:00:3" + number,
                     .frames = unit == 3 ? 4000U : 12'000U,
                     .start = static_cast<std::int64_t>(unit) * 60'000});
    }
    // The third merging unit, with another rate.
    station.add({.svID = "BAY4_MU03",
                 .source = "02:00:00:00:00:33",
                 .rate = 4800,
                 .frames = 9600,
                 .start = 1000 * kNsPerMs + 180'000});
    station.add({.gocbRef = "BAY4_PROT/LLN0$GO$gcbTrip",
                 .source = "02:00:00:00:00:41",
                 .firstMessage = 100,
                 .states = {30},
                 .start = 1 * kNsPerMs});
    station.add({.gocbRef = "BAY4_CTRL/LLN0$GO$gcbItl",
                 .source = "02:00:00:00:00:42",
                 .states = {1},
                 .start = 801 * kNsPerMs});
}

}  // namespace

FaultyCapture captureOfFaultyRecords() {
    FaultyStation station;
    addCapturedStreams(station);
    station.goose(nameless, 0).gocbRef.reset();
    // Lost by the capture program, which counts them at the next packet.
    station.drop(captured1, 2000).drop(captured2, 2000).drop(captured3, 2000);
    station.stepClock(2200 * kNsPerMs, 1500 * kNsPerMs);

    PcapngMaker maker;
    maker.section().interface(1, kSnapLength, maker.timeOptions(9, 0, "tap1"));
    for (StationFrame const& frame : station.inTimeOrder()) {
        PcapngMaker::Packet packet;
        packet.time = static_cast<std::uint64_t>(FaultyStation::timeOf(frame));
        packet.frame = FaultyStation::octetsOf(frame);
        packet.originalSize = static_cast<std::uint32_t>(packet.frame.size());
        if (packet.frame.size() > kSnapLength) {
            packet.frame.resize(kSnapLength);
        }
        if (frame.stream == captured1 && frame.number == 2001) {
            constexpr std::uint16_t kDropCount = 4;
            packet.options =
                concat({maker.numberOption(kDropCount, 3), PcapngMaker::endOfOptions()});
        }
        maker.packet(packet);
    }
    return {.octets = maker.bytes(), .frames = station.frames().size()};
}

}  // namespace TalTest
