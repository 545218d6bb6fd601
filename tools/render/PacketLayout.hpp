#pragma once

#include <string_view>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {

/// What is told of one packet without reading it again.
struct PacketRow {
    /// Outlives the row, and stays as it is while rows are written.
    StreamIdentity const* stream = nullptr;
    CaptureTime time;
    /// The capture as it was given; outlives the row.
    std::string_view file;
    /// Offset in that file of the goosePdu or of the sequence of ASDU, in octets.
    std::uint64_t position = 0;
    Place place = Place::inside;
};

/// inside, before or after.
[[nodiscard]] std::string_view toText(Place place);

/// The fields for when and where a packet was captured.
///
///     time               text       capture time, UTC, 2023-11-14T22:13:20.123456789Z
///     timeNs             integer    the same in nanoseconds since 1970
///     file               text       the capture as it was given, - for standard input
///     position           integer    offset in the file, in octets, as `show` takes it
///     place              text       inside the window, or before or after it
[[nodiscard]] std::vector<Field<PacketRow>> packetFields();

/// How packets are written: those fields, then those of the stream (see StreamFields).
/// @param withPlace  a table tells the place too
[[nodiscard]] RowLayout<PacketRow> packetLayout(bool withPlace);

}  // namespace TalIec61850Tools
