#pragma once

#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/library/LibraryStream.hpp"
#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

/// What is told of one stream: its identity, and figures from its index.
struct LibraryRow : LibraryStream {
    /// Packets in the index, over all files.
    std::uint64_t packets = 0;
    /// Capture files that hold packets of the stream.
    std::uint64_t files = 0;
    /// Packets that have a capture time in the index: those with a position.
    std::uint64_t timedPackets = 0;
    /// The earliest and the latest of those times.
    std::optional<CaptureTime> firstTime;
    std::optional<CaptureTime> lastTime;

    /// svID or gocbRef, if it has one.
    [[nodiscard]] std::optional<std::string> const& name() const { return svID ? svID : gocbRef; }

    /// The mean rate in 1/s between the first and the last time; none when fewer than two packets
    /// have a time, or no time passes.
    [[nodiscard]] std::optional<double> packetsPerSecond() const;
};

/// One row for each stream of the store, ordered by `comesBefore`.
[[nodiscard]] std::vector<LibraryRow> collectRows(TalIec61850Parser::Db const& db);

}  // namespace TalIec61850Tools
