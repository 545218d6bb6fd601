#pragma once

// Internal: what a GOOSE or SV frame is, by the plain rules, and which of its octets say so.

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Where a counter is in a frame; at index 0 where there is none.
struct CounterPlace {
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
};

/// One packet of a stream in a frame: a GOOSE message, or an ASDU.
struct WalkedPacket {
    /// Points into the frame.
    std::string_view name;
    StreamAttributes attributes;
    /// stNum, smpCnt.
    CounterPlace first;
    /// sqNum, smpSynch.
    CounterPlace second;
    std::uint16_t asdu = 0;
    bool isDamaged = false;
};

/// What the walk over a frame leads to. It is a function of the frame's size, of whether its end
/// was captured, of its link type, and of the octets that the mask says are significant.
struct FrameWalk {
    FrameHeader header;
    /// Not set for a frame that is neither GOOSE nor SV.
    std::optional<StreamProtocol> protocol;
    std::optional<UnreadReason> unread;
    /// Index of what comes after the header up to the EtherType and the VLAN tags: of the HSR tag.
    std::size_t lsduOffset = 0;
    /// Index of the end that the PDU has by its own length.
    std::size_t pduEnd = 0;
    /// Index of the goosePdu, or of the sequence of ASDU.
    std::size_t pduOffset = 0;
    /// Whether the PDU was cut by a snap length.
    bool isCut = false;
    std::vector<WalkedPacket> packets;
    /// 0xFF for each significant octet of the frame, 0 for the others.
    std::vector<std::uint8_t> mask;

    /// The identity of a packet of the frame.
    [[nodiscard]] StreamKey keyOf(WalkedPacket const& packet) const;
};

/// Walks over a frame. Nothing after the end of the PDU is read.
/// @param walk  is set; its memory is used again
void walkFrame(Octets frame, FrameOrigin const& origin, FrameWalk& walk);

}  // namespace TalIec61850Analysis::detail
