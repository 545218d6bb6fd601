#pragma once

#include <optional>

#include "tools/input/CaptureRecords.hpp"
#include "tools/inspect/GoosePacket.hpp"
#include "tools/inspect/SvPacket.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/selection/PacketLayout.hpp"

namespace TalIec61850Tools {

/// A packet in full, and the record that it came in.
struct ShownPacket {
    PacketRow row;
    CaptureRecord record;
    /// The one of the packet's protocol is set.
    std::optional<GoosePacket> goose;
    std::optional<SvPacket> sv;
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
