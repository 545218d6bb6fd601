#pragma once

#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/supervision/StreamSummary.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/render/FindingText.hpp"
#include "tools/render/PictureNames.hpp"

namespace TalIec61850Tools {

/// How many findings there are, and the first of the worst.
struct FindingsInShort {
    std::uint64_t errors = 0;
    std::uint64_t warnings = 0;
    std::uint64_t notes = 0;
    /// Findings of a clock that failed or is not synchronized.
    std::uint64_t clockFindings = 0;
    std::optional<TalIec61850Analysis::Finding> worst;

    void add(TalIec61850Analysis::Finding const& finding);
};

/// State changes, and the first two.
struct EventsInShort {
    std::uint64_t count = 0;
    std::size_t streams = 0;
    std::vector<TalIec61850Analysis::GooseEvent> first;
};

/// The captures: what they are called, and when their records came.
[[nodiscard]] std::string filesLine(std::vector<std::string> const& files,
                                    TalIec61850Analysis::TrafficIndex const& index,
                                    std::vector<bool> const& areWanted, std::int64_t begin,
                                    std::int64_t end);

/// How well the clocks of streams are synchronized.
/// @param summaries  of the streams that are wanted
[[nodiscard]] std::string clocksLine(
    std::vector<TalIec61850Analysis::StreamSummary> const& summaries,
    TalIec61850Analysis::TrafficIndex const& index, FindingsInShort const& findings,
    PictureNames const& names);

/// What was found, and the first of the worst.
[[nodiscard]] std::string findingsLine(FindingsInShort const& findings,
                                       TalIec61850Analysis::TrafficIndex const& index,
                                       FindingText& words, PictureNames const& names);

/// What changed, and what came after.
[[nodiscard]] std::string eventsLine(EventsInShort const& events,
                                     TalIec61850Analysis::TrafficIndex const& index,
                                     PictureNames const& names);

}  // namespace TalIec61850Tools
