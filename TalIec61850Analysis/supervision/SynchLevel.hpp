#pragma once

// Internal: what a smpSynch is worth.

#include <cstdint>

namespace TalIec61850Analysis::detail {

/// How good a synchronization is: 0 for none, 1 for some clock, 2 for a global one.
[[nodiscard]] constexpr int synchLevelOf(std::int16_t smpSynch) {
    constexpr std::int16_t kGlobal = 2;
    if (smpSynch == kGlobal) {
        return 2;
    }
    return smpSynch == 0 ? 0 : 1;
}

}  // namespace TalIec61850Analysis::detail
