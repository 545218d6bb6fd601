#include "tools/report/StreamsSection.hpp"

#include <algorithm>
#include <tuple>

#include "tools/render/RedundancyLayout.hpp"
#include "tools/render/SummaryLayout.hpp"
#include "tools/report/Section.hpp"
#include "tools/selection/RedundancyRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::StreamSummary;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficRedundancy;

void sortSummaries(std::vector<StreamSummary>& summaries, TrafficIndex const& index) {
    auto const order = [&](StreamSummary const& summary) {
        StreamKey const& key = index.streams()[summary.stream].key;
        return std::tie(key.protocol, key.destination, key.appId, key.name, key.source, key.vlans);
    };
    std::sort(summaries.begin(), summaries.end(),
              [&](StreamSummary const& a, StreamSummary const& b) { return order(a) < order(b); });
}

std::string streamsSection(std::vector<StreamSummary> const& summaries, TrafficIndex const& index,
                           std::size_t mostOctets) {
    HtmlTable<SummaryRow> table(
        summaryLayout(), {.id = "streams", .mostRows = kMostSectionRows, .mostOctets = mostOctets});
    for (StreamSummary const& summary : summaries) {
        static_cast<void>(
            table.add({.key = &index.streams()[summary.stream].key, .summary = summary}));
    }
    return sectionMarkup(table, {.absent = "There is no GOOSE or SV stream.",
                                 .noun = "stream",
                                 .command = "check --summary"});
}

std::string redundancySection(TrafficRedundancy const& redundancy, TrafficIndex const& index,
                              std::vector<bool> const& areWanted, std::size_t mostOctets) {
    HtmlTable<RedundancyRow> table(
        redundancyLayout(Format::table),
        {.id = "redundancy", .mostRows = kMostSectionRows, .mostOctets = mostOctets});
    for (RedundancyRow const& row : collectRedundancyRows(index, redundancy, {})) {
        if (areWanted[static_cast<std::size_t>(index.find(*row.key) - index.streams().data())]) {
            static_cast<void>(table.add(row));
        }
    }
    return sectionMarkup(table, {.absent = "No frame has an HSR tag or a PRP trailer.",
                                 .noun = "stream",
                                 .command = "redundancy"});
}

}  // namespace TalIec61850Tools
