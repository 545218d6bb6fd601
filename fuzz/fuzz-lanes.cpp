// The fast lane against the plain walk: whatever is indexed, and whatever is done to the store
// meanwhile, both end with one store.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>

#include "fuzz/LaneScript.hpp"
#include "lanes/BothLanes.hpp"

namespace {

/// Says when the program ends how much of all that was indexed had been remembered.
struct Tally {
    std::uint64_t captures = 0;
    std::uint64_t frames = 0;
    std::uint64_t remembered = 0;

    Tally() = default;
    Tally(Tally const&) = delete;
    Tally& operator=(Tally const&) = delete;
    ~Tally() {
        std::cerr << "fuzz-lanes: " << captures << " captures of " << frames << " frames, "
                  << remembered << " of them not walked by the fast lane ("
                  << 100 * remembered / (frames == 0 ? 1 : frames) << " %)\n";
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally tally;
    TalFuzz::LaneCase const tried = TalFuzz::laneCase({data, size});
    TalTest::LaneOutcome const outcome = TalTest::indexByBothLanes(tried.capture, tried.settings);
    if (!outcome.difference.empty()) {
        std::cerr << "The lanes differ: " << outcome << '\n';
        std::abort();
    }
    ++tally.captures;
    tally.frames += tried.frames;
    tally.remembered += outcome.remembered;
    return 0;
}
