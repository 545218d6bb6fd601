#pragma once

#include <TalIec61850Parser/store/Timest.hpp>
#include <cstdint>

namespace TalIec61850Parser {

/// One indexed packet: when it was captured and where it is in its capture file.
///
/// `position` is the offset, in octets from the start of the file, of the identifier octet from
/// which the packet can be decoded again: goosePdu (0x61) for GOOSE, the sequence of ASDU (0xA2)
/// for Sampled Values. A packet in which that element does not occur has time {0, 0} and
/// position 0.
struct Package {
    /// When it was captured.
    Timest time;
    /// Where it is in its capture file, in octets.
    std::uint64_t position = 0;

    /// Time and position are equal.
    friend constexpr bool operator==(Package const&, Package const&) = default;
};

static_assert(sizeof(Package) == 16, "the index is sized by this: 16 octets a packet");

}  // namespace TalIec61850Parser
