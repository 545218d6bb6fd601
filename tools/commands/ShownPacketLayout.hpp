#pragma once

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <optional>

#include "tools/output/RowLayout.hpp"
#include "tools/render/PacketLayout.hpp"

namespace TalIec61850Tools {

/// A packet in full, and the record that it came in.
struct ShownPacket {
    PacketRow row;
    TalIec61850Analysis::CaptureRecord record;
    /// The one of the packet's protocol is set.
    std::optional<TalIec61850Analysis::GoosePacket> goose;
    std::optional<TalIec61850Analysis::SvPacket> sv;
};

/// The fields of a packet in full: those of packetFields, then
///
///     recordPosition     integer    offset of the record's header in the file, in octets
///     capturedOctets     integer    of the frame
///     wireOctets         integer    of the frame before it was cut off
///     protocol           text       GOOSE or SV
///     goose              object     the packet, null for SV
///     sv                 object     the packet, null for GOOSE
///
/// People read a tree of lines instead, so there are no columns.
[[nodiscard]] RowLayout<ShownPacket> shownPacketLayout();

}  // namespace TalIec61850Tools
