// The fast lane against the plain walk: whatever is indexed, and whatever is done to the store
// meanwhile, both end with one store.

#include <cstddef>
#include <cstdint>

#include "fuzz/Check.hpp"
#include "fuzz/LaneScript.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"
#include "lanes/BothLanes.hpp"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static TalFuzz::Tally remembered("frames are not walked by the fast lane");
    static TalTest::ScratchFile file;
    TalFuzz::LaneCase const tried = TalFuzz::laneCase({data, size});
    file.assign(tried.capture);
    TalTest::LaneOutcome const outcome = TalTest::indexByBothLanes(file.path(), tried.settings);
    TalFuzz::requireNone(outcome.difference);
    remembered.add(outcome.remembered, tried.frames);
    return 0;
}
