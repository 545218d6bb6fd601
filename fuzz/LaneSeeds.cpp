#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/LaneScript.hpp"
#include "fuzz/Seeds.hpp"
#include "lanes/LaneFrames.hpp"
#include "lanes/StoreActions.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

/// Steps that repeat the frames, change them in a few places, and pass progress calls.
Bytes someSteps(std::size_t number) {
    auto const place = static_cast<std::uint8_t>(14 + 7 * number % 80);
    return {laneStep(kAddRound, 3),
            laneStep(kAdd, 0),
            laneStep(kAddChanged, 1),
            0,
            place,
            1,
            laneStep(kAddCounted, 0),
            0,
            60,
            laneStep(kAddTail, 0),
            4,
            2,
            laneStep(kPassToProgress, number % 8),
            laneStep(kAddRound, 2),
            laneStep(kChange, 0),
            0,
            place,
            0x80,
            laneStep(kAddRound, 1),
            laneStep(kAddResized, 1),
            0,
            120,
            0xFF,
            laneStep(kAddRound, 1)};
}

}  // namespace

/// Each frame alone, and each with two others; every filter and every action now and then.
void writeLaneSeeds(Seeds seeds) {
    auto const frames = allFrames();
    std::size_t const actions = storeActions().size() + 2;
    std::size_t const filters = laneFilters().size();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        Bytes const& frame = frames[i].octets;
        auto const action = i % 16 == 0   ? kFilterAction
                            : i % 16 == 8 ? kStopAction
                                          : static_cast<std::uint8_t>(i % actions);
        auto const filter = static_cast<std::uint8_t>(i % 3 == 0 ? i / 3 % filters : 0);
        auto const variant = static_cast<std::uint8_t>(i % 4);
        seeds.write(concat({laneInput(variant, 0, filter, {frame}), someSteps(i)}));
        std::vector<Bytes> const several = {frame, frames[i % 11].octets,
                                            frames[i * 7 % frames.size()].octets};
        seeds.write(concat({laneInput(variant, action, filter, several), someSteps(i)}));
    }
}

}  // namespace TalFuzz
