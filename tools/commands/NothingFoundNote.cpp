#include "tools/commands/NothingFoundNote.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <map>
#include <vector>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/output/Plural.hpp"
#include "tools/render/NothingFoundText.hpp"
#include "tools/render/PacketLayout.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureSummary;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::UnreadReason;

namespace {

std::vector<CaptureSummary const*> summariesOf(TrafficIndex const& index) {
    std::vector<CaptureSummary const*> summaries;
    for (auto const& file : index.files()) {
        summaries.push_back(&file.summary);
    }
    return summaries;
}

}  // namespace

void noteNoStreams(CommandRun const& run, TrafficIndex const& index, PacketCriteria const& criteria,
                   std::size_t jobs) {
    if (run.captures().empty() || run.isQuiet()) {
        return;
    }
    // Streams that the criteria leave out are not in the index: what there is takes another look.
    std::vector<StreamRow> const rows = criteria == PacketCriteria()
                                            ? collectRows(index)
                                            : collectRows(indexTraffic(run, {}, jobs));
    run.note(rows.empty() ? whyNoTraffic(summariesOf(index)) : whyNoStream(criteria, rows));
}

void noteNoPackets(CommandRun const& run, TrafficIndex const& index, PacketCriteria const& criteria,
                   std::size_t jobs, std::size_t streams) {
    if (streams == 0) {
        noteNoStreams(run, index, criteria, jobs);
        return;
    }
    std::vector<StreamRow> const rows = collectRows(index, criteria);
    if (rows.empty()) {
        run.note(
            fmt::format("no packet of {} meets the options on packets", plural(streams, "stream")));
    } else {
        noteOtherTimes(run, rows);
    }
}

void noteOtherTimes(CommandRun const& run, std::vector<StreamRow> const& rows,
                    std::string_view what) {
    if (auto const span = timesOf(rows)) {
        run.note(fmt::format("{}; these streams have packets from {} to {}", what,
                             toUtcText(span->first), toUtcText(span->last)));
    }
}

void noteNoRedundancy(CommandRun const& run, std::size_t streams) {
    run.note(
        fmt::format("no packet of {} has an HSR tag or a PRP trailer", plural(streams, "stream")));
}

void noteUnread(CommandRun const& run, TrafficIndex const& index) {
    std::map<UnreadReason, std::uint64_t> counts;
    std::uint64_t all = 0;
    for (CaptureSummary const* const summary : summariesOf(index)) {
        for (auto const& frame : summary->unread) {
            ++counts[frame.reason];
            ++all;
        }
    }
    if (all == 0) {
        return;
    }
    std::vector<std::string> reasons;
    reasons.reserve(counts.size());
    for (auto const& [reason, count] : counts) {
        reasons.push_back(fmt::format("{} {}", toText(reason), count));
    }
    run.note(fmt::format("{} of no stream: {}; packets lists them",
                         plural(all, "GOOSE or SV frame"), fmt::join(reasons, ", ")));
}

}  // namespace TalIec61850Tools
