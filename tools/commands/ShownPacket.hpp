#pragma once

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <cstdint>
#include <optional>
#include <string_view>

#include "tools/names/StreamNames.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/render/SampleText.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {

/// A packet in full, and the record that it came in.
struct ShownPacket {
    TalIec61850Analysis::CaptureRecord record;
    /// The capture as it was given; outlives this.
    std::string_view file;
    Place place = Place::inside;
    /// Offset in the file of the goosePdu or of the sequence of ASDU, in octets; not set where
    /// there is none.
    std::optional<std::uint64_t> position;
    /// The one of the packet's protocol is set.
    std::optional<TalIec61850Analysis::GoosePacket> goose;
    std::optional<TalIec61850Analysis::SvPacket> sv;
    /// Of its ASDUs.
    AsduLayouts layouts = {};
    /// Whether there is a description to take names from.
    bool isNamed = false;
    /// Of GOOSE, the names of its values.
    MemberNames names = {};
    /// Of SV, what the channels of its ASDUs mean.
    AsduMeanings meanings = {};

    [[nodiscard]] Protocol protocol() const { return goose ? Protocol::goose : Protocol::sv; }
};

/// Reads a frame in full, as far as it goes.
/// @param file   outlives the result
/// @param names  must outlive the result
/// @return none for a frame that is neither GOOSE nor SV by its EtherType
[[nodiscard]] std::optional<ShownPacket> showFrame(TalIec61850Analysis::RecordView const& view,
                                                   std::string_view file, StreamNames& names);

/// Takes layouts and meanings of the ASDUs of a packet from their description, where it has them.
void describeAsdus(ShownPacket& shown, StreamNames& names);

/// The fields of a packet in full:
///
///     time               text       capture time, UTC, 2023-11-14T22:13:20.123456789Z
///     timeNs             integer    the same in nanoseconds since 1970
///     file               text       the capture as it was given, - for standard input
///     position           integer    offset in the file of the PDU
///     framePosition      integer    offset of the frame
///     recordPosition     integer    offset of the record's header, or of its block
///     place              text       inside the window, or before or after it
///     capturedOctets     integer    of the frame
///     wireOctets         integer    of the frame before it was cut off
///     protocol           text       GOOSE or SV
///     goose              object     the packet, null for SV
///     sv                 object     the packet, null for GOOSE
///
/// People read a tree of lines instead, so there are no columns.
[[nodiscard]] RowLayout<ShownPacket> shownPacketLayout();

}  // namespace TalIec61850Tools
