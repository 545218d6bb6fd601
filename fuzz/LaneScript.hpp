#pragma once

// The language in which fuzz-lanes is told a capture, and how it is to be indexed.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "lanes/BothLanes.hpp"
#include "support/Bytes.hpp"

namespace TalFuzz {

/// The input begins with an octet each for the kind of capture, what progress calls do, the filter
/// and how many frames there are; then each frame, after its size in two octets. What follows is
/// steps: an octet whose low three bits say which, and whose others choose a frame or a number.
enum LaneStep : std::uint8_t {
    kAdd,         ///< a record of the frame
    kAddRound,    ///< a record of each frame, once or twice
    kAddChanged,  ///< with an octet changed: position (2), what is added to it (1)
    kChange,      ///< the frame itself, from here on: position (2), what is added to it (1)
    kAddTail,     ///< with the octet at this position from the end changed (1), to this value (1)
    kAddResized,  ///< of another size: in octets (2), filled with (1)
    kAddCounted,  ///< four records, with the octet at a position (2) counting up
    kPassToProgress  ///< empty records up to where a progress call comes, if chosen by 0, 8, 16 or
                     ///< 24
};
inline constexpr unsigned kLaneStepBits = 3;

/// What progress calls do, besides what storeActions() does: have indexing stopped, change the
/// filter.
inline constexpr std::uint8_t kStopAction = 0xFF;
inline constexpr std::uint8_t kFilterAction = 0xFE;

struct LaneCase {
    TalTest::Bytes capture;
    TalTest::LaneSettings settings;
    /// Records that hold a frame.
    std::size_t frames = 0;
};

LaneCase laneCase(std::span<std::uint8_t const> octets);

/// How an input for fuzz-lanes begins; the steps are to be put after it.
TalTest::Bytes laneInput(std::uint8_t variant, std::uint8_t action, std::uint8_t filter,
                         std::vector<TalTest::Bytes> const& frames);

/// A step and its choice, below 32.
constexpr std::uint8_t laneStep(LaneStep step, std::size_t choice) {
    return static_cast<std::uint8_t>(step | choice << kLaneStepBits);
}

}  // namespace TalFuzz
