// Seeds that are streams of states.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/FilterChoice.hpp"
#include "fuzz/Seeds.hpp"
#include "support/Data.hpp"
#include "support/FaultyStation.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

/// The values of a state: nested, of other makes now and then.
std::vector<Bytes> valuesOf(std::size_t seed, std::uint64_t state) {
    bool const isOn = state % 2 != 0;
    std::vector<Bytes> values = {dataBoolean(isOn), dataQuality(isOn ? 0x4000 : 0),
                                 dataUtcTime(static_cast<std::uint32_t>(1'700'000'000 + state))};
    if (seed % 3 != 0) {
        values.push_back(dataStructure(
            {dataInteger(static_cast<std::int64_t>(state)), dataArray({dataFloat(1.5F)})}));
    }
    if (seed % 4 == 3 && isOn) values.push_back(dataVisibleString("on"));
    return values;
}

}  // namespace

void writeEventSeeds(Seeds seeds) {
    constexpr std::int64_t kMillisecond = 1'000'000;
    for (std::size_t i = 0; i < 24; ++i) {
        FaultyStation station;
        station.add(GoosePlan{.firstState = i % 5 == 0 ? 0xFFFF'FFFEU : 1,
                              .firstMessage = static_cast<std::uint32_t>(i % 2 * 9),
                              .states = {2, 1 + i % 3, 3},
                              .timeAllowedtoLive = i % 7 == 2 ? 1 : 250});
        if (i % 2 == 0) {
            station.add(GoosePlan{.gocbRef = "R2",
                                  .source = "02:00:00:00:00:12",
                                  .states = {1, 2, 2},
                                  .start = 3 * kMillisecond});
        }
        for (StationFrame& frame : station.frames()) {
            auto& message = std::get<GooseMessage>(frame.message);
            message.setData(valuesOf(i, message.stNum->value));
        }
        if (i % 4 == 1) station.delay(0, 2, 6 * kMillisecond);
        if (i % 4 == 2) station.repeat(0, 1, 30 * kMillisecond);
        if (i % 6 == 3) station.goose(0, 4).stNum = 1;
        if (i % 6 == 4) station.stepClock(10 * kMillisecond, -1'000'000'000);
        if (i % 6 == 5) station.goose(0, 3).allData.reset();
        seeds.write(concat({Bytes(kFilterChoiceSize), station.captures().front()}));
    }
}

}  // namespace TalFuzz
