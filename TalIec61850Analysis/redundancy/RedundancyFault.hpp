#pragma once

#include <TalIec61850Analysis/packet/Sink.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// What can be wrong with the copies of a frame.
enum class RedundancyFaultKind : std::uint8_t {
    /// A frame came over one way alone, though the source was heard over the other one within the
    /// last second, and the captures of that way go on for 400 ms before and after.
    copyMissing,
    copyDiffers,     ///< two copies have other octets, besides way and place of tag or trailer
    copyExtra,       ///< one way brought a frame more than once
    wrongLan,        ///< PRP: two copies are of the same LAN, none of the other
    trailerInvalid,  ///< a PRP trailer has a size that does not fit
};

/// Frames of a stream, one after the other, that have the same fault.
struct RedundancyFault {
    /// What it is.
    RedundancyFaultKind kind = RedundancyFaultKind::copyMissing;
    /// The number of the stream in the index.
    std::size_t stream = 0;
    /// The packet that shows it first; where a copy is missing, the copy that came.
    PacketRef packet;
    /// The copy that it is compared with; of copyMissing and trailerInvalid, the packet of the
    /// stream before it, not set where there is none.
    std::optional<PacketRef> other;
    /// When that packet was captured, in nanoseconds since 1970.
    std::int64_t from = 0;
    /// When the last one with the fault was, likewise.
    std::int64_t until = 0;
    /// How many frames have it.
    std::uint64_t count = 1;
    /// 'A' or 'B': the way that lacks a copy, that of the packet otherwise, as it says.
    char lane = 'A';
    /// Of trailerInvalid: the size that would fit, in octets.
    std::uint32_t fittingSize = 0;
    /// Of trailerInvalid: the size that the trailer has.
    std::uint32_t claimedSize = 0;

    /// Member by member.
    friend bool operator==(RedundancyFault const&, RedundancyFault const&) = default;
};

/// Takes faults without a list of them.
using RedundancyFaultSink = Sink<RedundancyFault>;

}  // namespace TalIec61850Analysis
