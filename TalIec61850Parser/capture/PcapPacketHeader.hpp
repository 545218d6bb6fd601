#pragma once

#include <cstdint>

namespace TalIec61850Parser {

/// The time of one capture record, in host byte order.
struct PcapPacketHeader {
    /// Whole seconds since 1970-01-01 UTC.
    std::uint32_t tsSec = 0;
    /// The fraction of the second in the file's own unit: microseconds or nanoseconds.
    std::uint32_t tsUsec = 0;
    /// Captured octets: not carried over from the file, stays 0.
    std::uint32_t inclLen = 0;
    /// Octets on the wire: not carried over from the file, stays 0.
    std::uint32_t origLen = 0;
};

}  // namespace TalIec61850Parser
