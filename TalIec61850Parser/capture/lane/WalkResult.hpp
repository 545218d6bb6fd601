#pragma once

// Internal: what indexing concluded from a frame, for frames like it.

#include <TalIec61850Parser/capture/StreamPlace.hpp>
#include <cstdint>

namespace TalIec61850Parser::detail {

/// Where the packet of a frame goes, and what of it lies where. Positions are octets from the begin
/// of the frame.
struct FrameConclusion {
    /// None when the frame is not wanted.
    StreamPlace place;
    /// Which state of the store the place is in.
    std::uint32_t storeAge = 0;

    /// The element from which the packet can be decoded; 0 when the frame has none.
    std::uint16_t packetPosition = 0;
    std::uint16_t smpCntPosition = 0;
    /// Octets behind the PDU, which the walk passes over; 0 when there are none.
    std::uint16_t tailPosition = 0;

    std::uint16_t smpRate = 0;
    /// The stream's record among those that were kept, counted from 1; 0 when it was not kept.
    std::uint16_t record = 0;
    std::uint8_t noASDU = 0;
    /// Octets of smpCnt, two at most: no more are read.
    std::uint8_t smpCntSize = 0;
};

}  // namespace TalIec61850Parser::detail
