// A station whose redundant copies have faults.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "support/CaptureFile.hpp"
#include "support/FaultyCaptures.hpp"
#include "support/FaultyStation.hpp"

namespace TalTest {
namespace {

constexpr std::int64_t kBetweenCopies = 20'000;

/// The streams, in this order.
enum RedundantUnit : std::size_t { redundantUnit1, redundantUnit2 };

/// The frame whose trailer gives a wrong size over LAN A.
constexpr std::size_t kMisfit = 5200;

StationFrame& copyOver(char lan, FaultyStation& station, RedundantUnit unit, std::size_t number) {
    return *std::find_if(station.frames().begin(), station.frames().end(), [&](auto const& frame) {
        return frame.stream == unit && frame.number == number && frame.ethernet.prpLan == lan;
    });
}

void loseCopies(char lan, FaultyStation& station, RedundantUnit unit, std::size_t number,
                std::size_t count) {
    std::erase_if(station.frames(), [&](StationFrame const& frame) {
        return frame.stream == unit && frame.ethernet.prpLan == lan && frame.number >= number &&
               frame.number < number + count;
    });
}

Bytes octetsWithTrailer(StationFrame const& frame) {
    Bytes octets = FaultyStation::octetsOf(frame);
    bool const isMisfit = frame.stream == redundantUnit1 && frame.number == kMisfit;
    if (isMisfit && frame.ethernet.prpLan == 'A') {
        constexpr std::size_t kSizeToEnd = 3;  // the low octet of the size, and the suffix
        octets[octets.size() - kSizeToEnd] ^= 0x04U;
    }
    return octets;
}

}  // namespace

FaultyCapture captureOfFaultyCopies() {
    FaultyStation station;
    for (std::size_t unit = 1; unit <= 2; ++unit) {
        std::string const number = std::to_string(unit);
        station.add({.svID = "BAY3_MU0" + number,
                     .source = "02:00:00:00:00:2" + number,
                     .frames = 8000,
                     .start = static_cast<std::int64_t>(unit) * 60'000,
                     .prpDelay = kBetweenCopies});
    }
    loseCopies('B', station, redundantUnit1, 2000, 1);
    loseCopies('A', station, redundantUnit1, 2400, 12);
    auto& changed = copyOver('B', station, redundantUnit2, 2800);
    std::get<SvMessage>(changed.message).asdus.front().confRev = Unsigned<4>(2);
    station.repeat(redundantUnit1, 3600, 2 * kBetweenCopies);
    copyOver('B', station, redundantUnit2, 4400).ethernet.prpLan = 'A';

    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (StationFrame const& frame : station.inTimeOrder()) {
        std::int64_t const time = FaultyStation::timeOf(frame);
        capture.add(static_cast<std::uint32_t>(time / FaultyStation::kNsPerSecond),
                    static_cast<std::uint32_t>(time % FaultyStation::kNsPerSecond),
                    octetsWithTrailer(frame));
    }
    return {.octets = capture.bytes(), .frames = station.frames().size()};
}

}  // namespace TalTest
