#pragma once

#include <cstdint>

namespace TalIec61850Analysis {

/// Where the time of a sample comes from.
enum class SampleTimeSource : std::uint8_t {
    none,    ///< it has no time
    refrTm,  ///< its ASDU says it
    smpCnt,  ///< smpSynch is 2: a second, and smpCnt by the rate
    fit,     ///< a line through times of arrival
};

}  // namespace TalIec61850Analysis
