#pragma once

#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// A capture as a row: what is in the file.
struct CaptureRow {
    /// As it was given.
    std::string_view file;
    /// Must outlive the row.
    TalIec61850Analysis::CaptureSummary const* summary = nullptr;
};

/// How captures are written. The fields:
///
///     file          text
///     format        text       pcap or pcapng
///     precision     text       s, ms, us, ns, ps, others as 1e-7s or 2^-20s; of several interfaces
///                              the finest; absent where the file describes none
///     linkTypes     array      numbers of the registry, in ascending order
///     records       integer    whole ones
///     octets        integer    of the file
///     firstTimeNs   integer    earliest capture time, nanoseconds since 1970
///     lastTimeNs    integer    latest
///     goose, sv     integer    frames by their EtherType
///     other         object     protocol to number of frames, the most frequent first
///     dropped       integer    packets that were lost while capturing, if the file says so
///     damage        text       what is wrong with the file first, and how much more is
///     unknownTrailers integer  GOOSE and SV frames with octets after the PDU of unknown meaning
[[nodiscard]] RowLayout<CaptureRow> captureLayout();

/// The unit of times, of several interfaces the finest: "us", "1e-7s", "2^-20s".
/// @return none where no interface has one that can be used
[[nodiscard]] std::optional<std::string> precisionText(
    TalIec61850Analysis::CaptureSummary const& summary);

/// Packets that were lost while capturing: what the records say, or what the interfaces say, where
/// that is more. Both count the same losses.
/// @return none where the file says nothing
[[nodiscard]] std::optional<std::uint64_t> droppedPackets(
    TalIec61850Analysis::CaptureSummary const& summary);

}  // namespace TalIec61850Tools
