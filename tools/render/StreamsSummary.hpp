#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/output/Plural.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

/// The line below a table of streams: how many there are, and their packets.
/// @param captures  how many captures were read
template <typename Row>
[[nodiscard]] std::string streamsSummary(std::vector<Row> const& rows, std::size_t captures) {
    std::uint64_t packets = 0;
    for (Row const& row : rows) {
        packets += row.packets;
    }
    auto const goose = static_cast<std::uint64_t>(std::count_if(
        rows.begin(), rows.end(), [](Row const& row) { return row.protocol == Protocol::goose; }));
    auto const times = timesOf(rows);
    std::string const span =
        times ? fmt::format(", {} to {}", toUtcText(times->first), toUtcText(times->last))
              : std::string();
    return fmt::format("{} ({} GOOSE, {} SV), {} in {}{}", plural(rows.size(), "stream"), goose,
                       rows.size() - goose, plural(packets, "packet"), plural(captures, "file"),
                       span);
}

}  // namespace TalIec61850Tools
