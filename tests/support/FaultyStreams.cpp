// A station whose streams have faults.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "support/Data.hpp"
#include "support/FaultyCaptures.hpp"
#include "support/FaultyStation.hpp"

namespace TalTest {
namespace {

constexpr std::int64_t kMs = 1'000'000;

/// The streams, in this order.
enum Stream : std::size_t { unit1, unit2, unit3, trip, interlocking, status };

/// The number of the sample at a time.
constexpr std::size_t at(std::int64_t milliseconds) {
    return static_cast<std::size_t>(milliseconds * 4);
}

void addStreams(FaultyStation& station) {
    for (std::size_t unit = 1; unit <= 3; ++unit) {
        std::string const number = std::to_string(unit);
        station.add({.svID = "BAY1_MU0" + number,
                     .source = "02:00:00:00:00:0" + number,
                     .frames = 8000,
                     .start = static_cast<std::int64_t>(unit) * 60'000});
    }
    station.add({.gocbRef = "BAY1_PROT/LLN0$GO$gcbTrip",
                 .source = "02:00:00:00:00:11",
                 .firstState = 7,
                 .firstMessage = 100,
                 .states = {6, 8, 6, 12},
                 .start = 1 * kMs});
    station.add({.gocbRef = "BAY1_CTRL/LLN0$GO$gcbItl",
                 .source = "02:00:00:00:00:12",
                 .firstState = 30,
                 .firstMessage = 100,
                 .states = {8, 8, 8},
                 .start = 2 * kMs});
    station.add({.gocbRef = "BAY2_CTRL/LLN0$GO$gcbStat",
                 .source = "02:00:00:00:00:13",
                 .firstMessage = 100,
                 .states = {19},
                 .start = 3 * kMs});
    // A second source of one svID.
    station.add({.svID = "BAY1_MU03",
                 .source = "02:00:00:00:00:99",
                 .frames = 1200,
                 .start = 1700 * kMs + 30'000});
}

/// Between two times, changes what the ASDU of a merging unit says.
void changeAsdus(FaultyStation& station, Stream unit, std::int64_t from, std::int64_t until,
                 std::function<void(Asdu&)> const& change) {
    for (StationFrame& frame : station.frames()) {
        if (frame.stream == unit && frame.number >= at(from) && frame.number < at(until)) {
            change(std::get<SvMessage>(frame.message).asdus.front());
        }
    }
}

void addSvFaults(FaultyStation& station) {
    constexpr std::int64_t kEnd = 2000;
    Bytes const grandmaster = {0x89, 8, 0x00, 0x30, 0xA7, 0xFF, 0xFE, 0x00, 0x00, 0x01};
    for (Stream const unit : {unit1, unit2, unit3}) {
        changeAsdus(station, unit, 0, kEnd, [&](Asdu& asdu) { asdu.extraLast = grandmaster; });
    }
    station.repeat(unit2, at(300), 20'000).delay(unit2, at(350), 600'000);
    station.delay(unit3, at(400), 180'000);
    changeAsdus(station, unit3, 700, kEnd,
                [](Asdu& asdu) { asdu.smpCnt = Unsigned<2>((asdu.smpCnt->value + 1000) % 4000); });
    changeAsdus(station, unit1, 800, 1000, [](Asdu& asdu) { asdu.smpSynch = Unsigned<1>(0); });
    changeAsdus(station, unit2, 900, 950, [](Asdu& asdu) {
        std::vector<Sample> channels(8, Sample{1000, 0});
        channels[1].second = 0x81;
        asdu.seqData = samples(channels);
    });
    changeAsdus(station, unit3, 1100, kEnd, [](Asdu& asdu) { asdu.confRev = Unsigned<4>(10001); });
    changeAsdus(station, unit1, 1200, kEnd, [](Asdu& asdu) { asdu.extraLast.back() = 2; });
    changeAsdus(station, unit2, 1300, kEnd,
                [](Asdu& asdu) { asdu.datSet = "BAY1_MU02/LLN0$PhsMeas2"; });
    for (StationFrame& frame : station.frames()) {
        bool const isTest = frame.number >= at(1400) && frame.number < at(1450);
        if (frame.stream == unit2 && isTest) {
            std::get<SvMessage>(frame.message).reserved1 = 0x8000;
        }
    }
    // Held up in a switch, then sent at once.
    for (std::size_t number = at(1500); number < at(1530); ++number) {
        station.frame(unit3, number).time =
            1530 * kMs + static_cast<std::int64_t>(number - at(1500)) * 1'000;
    }
}

void addGooseFaults(FaultyStation& station) {
    station.repeat(trip, 2, kMs).repeat(trip, 3, 300 * kMs);
    station.changeGooseFrom(interlocking, 12, [](GooseMessage& message) {
        message.setData({dataBoolean(true), dataQuality(), dataUtcTime(1'700'000'001)});
    });
    station.changeGooseFrom(interlocking, 4, [](GooseMessage& message) {
        message.timeAllowedtoLive = MinimalUnsigned(500);
    });
    station.changeGooseFrom(interlocking, 5,
                            [](GooseMessage& message) { message.t = utcTime(1'700'000'000); });
    station.changeGooseFrom(status, 3, [](GooseMessage& message) { message.ndsCom = true; });
    station.changeGooseFrom(status, 5, [](GooseMessage& message) { message.numDatSetEntries = 4; });
    station.changeGooseFrom(status, 7, [](GooseMessage& message) { message.simulation = true; });
    station.changeGooseFrom(
        status, 9, [](GooseMessage& message) { message.t = utcTime(1'700'000'100, 0, 0x6A); });
    station.changeGooseFrom(status, 13, [](GooseMessage& message) {
        message.setData({dataBoolean(false), dataQuality(), dataUtcTime(1'700'000'000)});
    });
    station.changeGooseFrom(status, 17,
                            [](GooseMessage& message) { message.timeAllowedtoLive = 0; });
}

}  // namespace

FaultyCapture captureOfFaultyStreams() {
    FaultyStation station;
    addStreams(station);
    addSvFaults(station);
    addGooseFaults(station);
    // What never comes: of one stream, and of all.
    station.drop(unit1, at(250), 8).drop(trip, 4).drop(trip, 14, 9);
    station.dropBetween(500 * kMs, 520 * kMs);
    Bytes capture = station.captures().front();
    return {.octets = std::move(capture), .frames = station.frames().size()};
}

}  // namespace TalTest
