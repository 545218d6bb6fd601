#pragma once

// What a progress call may do to the store that is being indexed into.

#include <cstdint>
#include <string>
#include <vector>

#include "lanes/BothLanes.hpp"

namespace TalTest {

struct StoreAction {
    std::string name;
    ProgressAction act;
};

/// Clears, erases, adds, moves, copies and swaps, each the same whenever the store is the same.
std::vector<StoreAction> const& storeActions();

/// One of these in each call, or none; which ones depends on the seed alone.
ProgressAction randomActions(std::uint32_t seed);

}  // namespace TalTest
