#include "tools/commands/FollowPackets.hpp"

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/FollowCaptures.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/input/FollowedCaptures.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/PacketLayout.hpp"
#include "tools/selection/FrameReader.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::RecordView;
using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::TimeWindow;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficOptions;

namespace {

/// Writes rows of what is added to captures.
class PacketLines {
public:
    PacketLines(CommandRun& run, PacketOptions const& options, NamesOfRun& names)
        : run_(run),
          options_(options),
          criteria_(names.asking(options.criteria)),
          writer_(run.rowWriter(chooseColumns(
              packetLayout(false, names.areGiven() ? &names : nullptr), options.common.columns))) {}

    /// @return whether more may be written
    bool write(std::vector<AddedTraffic>&& added) {
        TrafficIndex index;
        std::vector<std::string> names;
        for (AddedTraffic& each : added) {
            names.push_back(each.name);
            index.merge(std::move(each.index));
        }
        if (!names.empty()) {
            try {
                writeRows(index, names);
            } catch (OutputError const&) {
                throw;
            } catch (std::system_error const& error) {
                run_.complainOf(names.front(), faultText(error.code()));
            }
        }
        writer_.flush();
        return !isFull();
    }

    void finish() { writer_.finish(); }

private:
    [[nodiscard]] bool isFull() const { return options_.limit && count_ >= *options_.limit; }

    void writeRows(TrafficIndex const& index, std::vector<std::string> const& names) {
        FrameReader frames(names);
        auto const headerOf = [&](std::uint32_t file, std::uint64_t frameOffset) {
            RecordView const& view = frames.read(file, frameOffset);
            return TalIec61850Analysis::readFrameHeader(view.frame, originOf(view.record));
        };
        if (!window_) {
            // What it is relative to does not change any more.
            window_ = options_.window.resolve(spanOf(index));
        }
        PacketSelection selection(
            index, {.criteria = criteria_, .window = *window_, .withContext = false}, headerOf);
        for (auto packet = selection.next(); packet && !isFull(); packet = selection.next()) {
            writer_.write(PacketRow(*packet, names[packet->file], frames));
            ++count_;
        }
    }

    CommandRun& run_;
    PacketOptions const& options_;
    PacketCriteria criteria_;
    RowWriter<PacketRow> writer_;
    std::optional<TimeWindow> window_;
    std::uint64_t count_ = 0;
};

}  // namespace

ExitStatus followPackets(PacketOptions const& options) {
    if (!options.captureFile.empty() || options.withContext) {
        throw UsageError("--follow lists packets; --write and --context do not go with it");
    }
    CommandRun run = CommandRun::following(options.common);
    NamesOfRun names(run, options.common);
    PacketCriteria const criteria = names.asking(options.criteria);
    TrafficOptions traffic;
    if (criteria != PacketCriteria()) {
        traffic.keeps = [&](StreamKey const& key) { return criteria.admitKey(key); };
    }
    FollowedCaptures captures(options.common.files, traffic);
    PacketLines lines(run, options, names);
    followCaptures(
        run, options.follow, FollowPace::fast, captures,
        [&](std::vector<AddedTraffic>&& added) { return lines.write(std::move(added)); });
    lines.finish();
    return run.finish();
}

}  // namespace TalIec61850Tools
