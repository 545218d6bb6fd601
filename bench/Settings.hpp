#pragma once

#include <cstdint>

namespace TalBench {

/// How thoroughly to measure.
struct Settings {
    int rounds = 7;
    /// What numbers of frames are divided by; more than 1 for trying things out.
    std::uint64_t divisor = 1;
    /// Whether the time that passes is measured, not that of the processor.
    bool countsRealTime = true;
    /// Whether other programs are measured too, which takes long.
    bool withPrograms = true;
};

}  // namespace TalBench
