#pragma once

#include <TalIec61850Analysis/redundancy/CopyCounts.hpp>
#include <TalIec61850Analysis/supervision/StreamSummary.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// Puts streams into the order in which `streams` lists them.
void sortSummaries(std::vector<TalIec61850Analysis::StreamSummary>& summaries,
                   TalIec61850Analysis::TrafficIndex const& index);

/// The streams of a page in figures: a table "streams".
/// @param mostOctets  of the table
[[nodiscard]] std::string streamsSection(
    std::vector<TalIec61850Analysis::StreamSummary> const& summaries,
    TalIec61850Analysis::TrafficIndex const& index, std::size_t mostOctets);

/// The copies over both ways of HSR and PRP: a table "redundancy".
/// @param areWanted   whether each stream is, by its number in the index
/// @param mostOctets  of the table
[[nodiscard]] std::string redundancySection(
    TalIec61850Analysis::TrafficRedundancy const& redundancy,
    TalIec61850Analysis::TrafficIndex const& index, std::vector<bool> const& areWanted,
    std::size_t mostOctets);

}  // namespace TalIec61850Tools
