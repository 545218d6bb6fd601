#pragma once

#include <rapidcheck.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "support/Bytes.hpp"

namespace TalIec61850Analysis {

/// A next-generation capture in which libpcap reads everything rightly, but for the times of simple
/// packets: one byte order, link type and snap length, and no unit finer than 2^-34 s.
struct RandomPcapng {
    struct SimplePacket {
        /// Which of all packets it is.
        std::size_t index = 0;
        /// What libpcap tells as its time, in seconds since 1970: where its interface counts from.
        std::int64_t zero = 0;
    };

    TalTest::Bytes octets;
    std::vector<SimplePacket> simplePackets;
};

/// Several sections, interfaces with clocks of their own, all kinds of blocks and options.
[[nodiscard]] rc::Gen<RandomPcapng> anyPcapng();

/// For RapidCheck to print.
void showValue(RandomPcapng const& capture, std::ostream& out);

}  // namespace TalIec61850Analysis
