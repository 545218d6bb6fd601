#include "tools/commands/NothingFoundNote.hpp"

#include <fmt/format.h>

#include <vector>

#include "tools/render/UtcText.hpp"
#include "tools/selection/NothingFound.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

void noteNoStreams(CommandRun& run, StreamCriteria const& criteria) {
    if (run.captures().empty() || run.isQuiet()) {
        return;
    }
    std::vector<StreamRow> rows;
    if (criteria != StreamCriteria()) {
        // The library's filter has left streams out: what there is takes another look.
        rows = collectRows(run.index({}).db);
    }
    run.note(whyNoStream(criteria, {rows.begin(), rows.end()}));
}

void noteNoPackets(CommandRun& run, CaptureIndex const& index, PacketOptions const& options,
                   PacketSelection const& selection) {
    if (selection.streams.empty()) {
        noteNoStreams(run, options.criteria);
        return;
    }
    std::vector<StreamRow> rows = collectRows(index.db);
    std::erase_if(rows, [&](StreamRow const& row) { return !options.criteria.admit(row); });
    if (auto const span = timesOf(rows)) {
        run.note(fmt::format("no packet in the window; these streams have packets from {} to {}",
                             toUtcText(span->first), toUtcText(span->last)));
    }
}

}  // namespace TalIec61850Tools
