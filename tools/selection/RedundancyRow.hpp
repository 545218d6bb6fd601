#pragma once

#include <TalIec61850Analysis/redundancy/CopyCounts.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <vector>

#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// What is told of the copies of one stream.
struct RedundancyRow {
    /// Of the index, which must outlive the row.
    TalIec61850Analysis::StreamKey const* key = nullptr;
    TalIec61850Analysis::CopyCounts counts;
};

/// Whether a stream is wanted: by what tells it from others, and by what any of its packets says.
[[nodiscard]] bool isWanted(TalIec61850Analysis::TrafficIndex const& index,
                            TalIec61850Analysis::TrafficStream const& stream,
                            PacketCriteria const& criteria);

/// One row for each wanted stream that has redundant frames that were counted, in the order in
/// which `streams` lists them.
[[nodiscard]] std::vector<RedundancyRow> collectRedundancyRows(
    TalIec61850Analysis::TrafficIndex const& index,
    TalIec61850Analysis::TrafficRedundancy const& redundancy, PacketCriteria const& criteria);

}  // namespace TalIec61850Tools
