#pragma once

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <optional>
#include <string_view>

#include "tools/names/StreamNames.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/selection/FrameReader.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {

/// What is told of one packet: what the index has, and what is read again from its record when it
/// is asked for.
class PacketRow {
public:
    /// @param file    the capture as it was given; outlives the row
    /// @param frames  outlives the row, and is asked for no other frame meanwhile
    PacketRow(SelectedPacket const& packet, std::string_view file, FrameReader& frames)
        : packet_(packet), file_(file), frames_(frames) {}

    [[nodiscard]] SelectedPacket const& packet() const { return packet_; }
    [[nodiscard]] bool isUnread() const { return packet_.unread != nullptr; }
    /// What tells its stream from others; null for a frame of no stream.
    [[nodiscard]] TalIec61850Analysis::StreamKey const* key() const {
        return isUnread() ? nullptr : &packet_.stream->key;
    }
    [[nodiscard]] Protocol protocol() const {
        return isUnread() ? packet_.unread->protocol : key()->protocol;
    }
    /// What the index has of it; not for a frame of no stream.
    [[nodiscard]] TalIec61850Analysis::PacketColumns const& columns() const {
        return packet_.part->packets;
    }
    [[nodiscard]] std::string_view file() const { return file_; }

    /// The record in the file.
    /// @throws std::system_error  see FrameReader
    [[nodiscard]] TalIec61850Analysis::RecordView const& record() const;

    /// What is around the PDU, read again.
    /// @throws std::system_error  see FrameReader
    [[nodiscard]] TalIec61850Analysis::FrameHeader const& header() const;

private:
    SelectedPacket packet_;
    std::string_view file_;
    FrameReader& frames_;
    mutable TalIec61850Analysis::RecordView const* record_ = nullptr;
    mutable std::optional<TalIec61850Analysis::FrameHeader> header_;
};

/// inside, before or after.
[[nodiscard]] std::string_view toText(Place place);

/// Why a frame is of no stream, in one word.
[[nodiscard]] std::string_view toText(TalIec61850Analysis::UnreadReason reason);

/// How packets are written. Names and order of the fields are stable; what a packet lacks, or what
/// was cut off, is null.
///
///     time               text       capture time, UTC, 2023-11-14T22:13:20.123456789Z
///     timeNs             integer    the same in nanoseconds since 1970
///     file               text       the capture as it was given, - for standard input
///     position           integer    offset in the file of the PDU: goosePdu, or sequence of ASDU
///     framePosition      integer    offset of the frame
///     recordPosition     integer    offset of the record's header, or of its block
///     protocol           text       GOOSE or SV
///     source             text       MAC address
///     destination        text       MAC address
///     vlanId             integer    of the innermost tag
///     appId              text       hexadecimal, such as 0x4000
///     svID               text       SV
///     gocbRef            text       GOOSE
///     asdu               integer    SV: the number of the ASDU in its frame, from 1
///     stNum              integer    GOOSE
///     sqNum              integer    GOOSE
///     timeAllowedToLive  integer    GOOSE, milliseconds
///     simulated          true/false
///     smpCnt             integer    SV
///     smpSynch           integer    SV
///     hsrLane            text       A or B
///     prpLane            text       A or B
///     redundancySequence integer    of HSR or PRP
///     capturedOctets     integer    of the frame
///     wireOctets         integer    of the frame before it was cut off
///     place              text       inside the window, or before or after it
///     unreadable         text       why the frame is of no stream, else null
///
/// Where streams are described, these come at the end:
///
///     ied                text       that publishes the stream
///     controlBlock       text       its reference as described
/// @param withPlace  a table tells the place too
/// @param names      what describes streams, which must outlive the layout; null without that
[[nodiscard]] RowLayout<PacketRow> packetLayout(bool withPlace, StreamNames* names = nullptr);

}  // namespace TalIec61850Tools
