// Seeds that are short traffic of a station, to which faults are done.

#include <cstdint>

#include "fuzz/FilterChoice.hpp"
#include "fuzz/Seeds.hpp"
#include "support/FaultyStation.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

constexpr std::int64_t kMillisecond = 1'000'000;

void doFault(FaultyStation& station, unsigned fault) {
    switch (fault) {
        case 0:
            break;
        case 1:
            station.drop(0, 5, 3);
            break;
        case 2:
            station.repeat(0, 5, kMillisecond / 10);
            break;
        case 3:
            station.delay(0, 5, 2 * kMillisecond);
            break;
        case 4:
            station.stepClock(2 * kMillisecond, -1'000 * kMillisecond);
            break;
        case 5:
            station.drop(1, 2);
            break;
        case 6:
            station.repeat(1, 3, kMillisecond);
            break;
        case 7:
            station.delay(1, 3, 60 * kMillisecond);
            break;
        case 8:
            station.dropBetween(kMillisecond, 3 * kMillisecond);
            break;
        case 9:
            station.changeGooseFrom(1, 4, [](GooseMessage& message) { message.confRev = 9; });
            break;
        case 10:
            station.changeGooseFrom(1, 3, [](GooseMessage& message) { message.stNum = 1; });
            break;
        default:
            station.changeSvFrom(
                0, 6, [](SvMessage& message) { message.asdus.front().smpSynch = Unsigned<1>(0); });
            break;
    }
}

}  // namespace

void writeSupervisionSeeds(Seeds seeds) {
    for (unsigned fault = 0; fault < 12; ++fault) {
        for (bool const isRedundant : {false, true}) {
            FaultyStation station;
            SvPlan sv{.firstCount = 3995, .frames = 12};
            if (isRedundant) {
                sv.prpDelay = 5'000;
            }
            station.add(sv);
            station.add(GoosePlan{.states = {4, 3}, .heartbeat = 20 * kMillisecond});
            doFault(station, fault);
            seeds.write(concat({Bytes(kFilterChoiceSize), station.captures().front()}));
        }
    }
}

}  // namespace TalFuzz
