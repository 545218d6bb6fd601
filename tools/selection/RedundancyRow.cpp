#include "tools/selection/RedundancyRow.hpp"

#include <algorithm>
#include <tuple>

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

bool isWanted(TrafficIndex const& index, TrafficStream const& stream,
              PacketCriteria const& criteria) {
    return criteria.admitKey(stream.key) &&
           std::any_of(stream.parts.begin(), stream.parts.end(), [&](StreamPart const& part) {
               return std::any_of(
                   part.changes.begin(), part.changes.end(), [&](AttributeChange const& change) {
                       return criteria.admitAttributes(index.attributes(part, change));
                   });
           });
}

std::vector<RedundancyRow> collectRedundancyRows(TrafficIndex const& index,
                                                 TrafficRedundancy const& redundancy,
                                                 PacketCriteria const& criteria) {
    std::vector<RedundancyRow> rows;
    for (StreamRedundancy const& each : redundancy.streams) {
        TrafficStream const& stream = index.streams()[each.stream];
        if (each.counts.frames() > 0 && isWanted(index, stream, criteria)) {
            rows.push_back({.key = &stream.key, .counts = each.counts});
        }
    }
    auto const orderOf = [](RedundancyRow const& row) {
        StreamKey const& key = *row.key;
        return std::tie(key.protocol, key.destination, key.appId, key.name, key.source, key.vlans);
    };
    std::sort(rows.begin(), rows.end(), [&](RedundancyRow const& a, RedundancyRow const& b) {
        return orderOf(a) < orderOf(b);
    });
    return rows;
}

}  // namespace TalIec61850Tools
