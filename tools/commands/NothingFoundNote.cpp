#include "tools/commands/NothingFoundNote.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "tools/render/UtcText.hpp"
#include "tools/selection/NothingFound.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

void noteNoStreams(CommandRun& run, StreamCriteria const& criteria) {
    if (run.captures().empty() || run.isQuiet()) {
        return;
    }
    // The library's filter has left streams out: what there is takes another look.
    CaptureIndex const all = run.index({});
    auto const rows = collectRows(all.db);
    run.note(whyNoStream(criteria, {rows.begin(), rows.end()}));
}

void noteNoPackets(CommandRun& run, CaptureIndex const& index, PacketOptions const& options,
                   PacketSelection const& selection) {
    if (selection.streams.empty()) {
        noteNoStreams(run, options.criteria);
        return;
    }
    std::optional<CaptureTime> first;
    std::optional<CaptureTime> last;
    for (StreamRow const& row : collectRows(index.db)) {
        if (row.firstTime && options.criteria.admit(row)) {
            first = std::min(first.value_or(*row.firstTime), *row.firstTime);
            last = std::max(last.value_or(*row.lastTime), *row.lastTime);
        }
    }
    if (first) {
        run.note(fmt::format("no packet in the window; these streams have packets from {} to {}",
                             toUtcText(*first), toUtcText(*last)));
    }
}

}  // namespace TalIec61850Tools
