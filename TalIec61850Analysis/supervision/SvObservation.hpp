#pragma once

// Internal: what supervision is told of a packet of an SV stream.

#include <TalIec61850Analysis/supervision/RedundancyNumber.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// One packet: an ASDU.
struct SvObservation {
    /// In nanoseconds, or kNoTime.
    std::int64_t arrival = kNoTime;
    /// Handed back with findings, and not looked into.
    PacketRef packet;
    /// Where `isCounted`.
    std::uint32_t smpCnt = 0;
    /// Packets of several ways to the capture (LANs, lanes, taps) need not keep to one order.
    std::uint16_t way = 0;
    /// The number of the ASDU in its frame.
    std::uint16_t asdu = 0;
    /// kNoSynch where the packet does not have one.
    std::int16_t smpSynch = kNoSynch;
    /// The sequence number of HSR or PRP; kNoSequence without one.
    std::int32_t sequence = kNoSequence;
    /// Whether there is a smpCnt.
    bool isCounted = true;

    static constexpr std::int16_t kNoSynch = -1;
};

}  // namespace TalIec61850Analysis::detail
