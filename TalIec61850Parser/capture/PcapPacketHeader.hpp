#pragma once

#include <cstdint>

namespace TalIec61850Parser {

/// The time of one capture record, in host byte order.
struct PcapPacketHeader {
    std::uint32_t tsSec = 0;
    /// The fraction of the second in the file's own unit: microseconds or nanoseconds.
    std::uint32_t tsUsec = 0;
    /// The lengths are not carried over from the file; both stay 0.
    std::uint32_t inclLen = 0;
    std::uint32_t origLen = 0;
};

}  // namespace TalIec61850Parser
