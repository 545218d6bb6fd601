#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Sink.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Analysis {

/// From one packet on, a stream has these attributes.
struct AttributeChange {
    /// The number of the packet in its columns.
    std::uint32_t firstPacket = 0;
    /// The number of the attributes among those of the file: TrafficIndex::attributes.
    std::uint32_t attributes = 0;

    /// Member by member.
    friend bool operator==(AttributeChange const&, AttributeChange const&) = default;
};

/// What one file has of a stream.
struct StreamPart {
    /// The number of the file in the index.
    std::uint32_t file = 0;
    /// Never empty.
    PacketColumns packets;
    /// In the order of the packets, from packet 0 on: an entry where attributes are others than
    /// before. Packets that were cut have attributes of their own.
    std::vector<AttributeChange> changes;

    /// Member by member.
    friend bool operator==(StreamPart const&, StreamPart const&) = default;
};

/// One packet of a stream.
struct PacketRef {
    /// Which of the stream's parts it is in.
    std::uint32_t part = 0;
    /// Its number in the columns of that part.
    std::uint32_t packet = 0;

    /// Member by member.
    friend bool operator==(PacketRef const&, PacketRef const&) = default;
};

/// Takes packets without a list of them.
using PacketSink = Sink<PacketRef>;

/// All packets of one stream, of all files.
struct TrafficStream {
    /// What tells it from others.
    StreamKey key;
    /// In the order of the files.
    std::vector<StreamPart> parts;
    /// Packets without copies and duplicates: what the publisher sent. An ASDU counts as one.
    std::uint64_t packets = 0;
    /// Packets that came again over the other LAN or lane.
    std::uint64_t copies = 0;
    /// Packets that a file holds which an earlier one holds already.
    std::uint64_t duplicates = 0;

    /// Shows the packets in a window of time, in the order of time over all files; those of one
    /// time in the order of files. Duplicates are left out, copies are not; see PacketFlags.
    /// @param window  packets without a time are in none, not even in one without ends
    /// @param sink    called with each packet
    TALIEC61850ANALYSIS_EXPORT void visit(TimeWindow const& window, PacketSink sink) const;

    /// How many packets there are in the columns, copies and duplicates included.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::uint64_t size() const noexcept;

    /// Member by member.
    friend bool operator==(TrafficStream const&, TrafficStream const&) = default;
};

}  // namespace TalIec61850Analysis
