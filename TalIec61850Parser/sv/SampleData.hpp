#pragma once

#include <cstdint>

namespace TalIec61850Parser {

/// One channel of one sample (IEC 61850-9-2), as received: nothing is scaled or interpreted.
struct SampleData {
    /// The instantaneous value.
    std::int32_t value = 0;
    /// The quality word, 32 bits.
    std::uint32_t quality = 0;
};

}  // namespace TalIec61850Parser
