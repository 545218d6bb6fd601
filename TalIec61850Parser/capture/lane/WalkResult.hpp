#pragma once

// Internal: what the walk of a frame resulted in, for frames of the same pattern.

#include <TalIec61850Parser/capture/index/StreamPlace.hpp>
#include <cstdint>

namespace TalIec61850Parser::detail {

/// Where the packet of a frame goes, and where in the frame its parts are. Indices count octets
/// from the start of the frame.
struct WalkResult {
    /// None when the frame is not wanted.
    StreamPlace place;
    /// Which state of the store the place is in.
    std::uint32_t storeAge = 0;

    /// The element from which the packet can be decoded; 0 when the frame has none.
    std::uint16_t packetIndex = 0;
    std::uint16_t smpCntIndex = 0;
    /// Octets after the PDU, which the walk passes over; 0 when there are none.
    std::uint16_t tailIndex = 0;

    std::uint16_t smpRate = 0;
    /// The stream among those that were kept, counted from 1; 0 when it was not kept.
    std::uint16_t streamNumber = 0;
    std::uint8_t noASDU = 0;
    /// Octets of smpCnt, two at most: no more are read.
    std::uint8_t smpCntSize = 0;
};

}  // namespace TalIec61850Parser::detail
