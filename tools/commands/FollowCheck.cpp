#include "tools/commands/FollowCheck.hpp"

#include <TalIec61850Analysis/supervision/LiveSupervision.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/FollowCaptures.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/commands/WantedFindings.hpp"
#include "tools/input/FollowedCaptures.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Plural.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/FindingLayout.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Finding;
using TalIec61850Analysis::LiveSupervision;
using TalIec61850Analysis::SupervisionOptions;
using TalIec61850Analysis::TrafficIndex;

namespace {

SupervisionOptions supervisionOf(CheckOptions const& options, StreamNames& names) {
    SupervisionOptions supervision = WantedFindings(options, {}, {}).supervision();
    supervision.layoutOf = names.layouts();
    return supervision;
}

/// What was added to all captures.
TrafficIndex joinAdded(std::vector<AddedTraffic>&& added) {
    TrafficIndex index;
    for (AddedTraffic& each : added) {
        try {
            index.merge(std::move(each.index));
        } catch (std::system_error const&) {
            // Frames of several files were to be compared, and one cannot be read any more. All is
            // in the index, and is compared again where supervision adds it, and can leave it out.
            continue;
        }
    }
    return index;
}

/// Writes rows of what goes wrong.
class FindingLines {
public:
    FindingLines(CommandRun& run, CheckOptions const& options)
        : run_(run),
          options_(options),
          names_(run, options.common),
          supervision_(supervisionOf(options, names_)),
          writer_(run.rowWriter(
              chooseColumns(findingLayout(names_.areGiven()), options.common.columns))) {}

    /// @return whether more may be written
    bool write(std::vector<AddedTraffic>&& added) {
        TrafficIndex index = joinAdded(std::move(added));
        if (!wanted_ && !index.files().empty()) {
            // What the window is relative to does not change any more.
            wanted_.emplace(options_, names_.asking(options_.criteria),
                            options_.window.resolve(spanOf(index)));
        }
        supervise([&](auto const& sink) { supervision_.add(std::move(index), sink); });
        writer_.flush();
        return !isFull();
    }

    void finish() {
        supervise([&](auto const& sink) { supervision_.finish(sink); });
        writer_.finish();
    }

    [[nodiscard]] bool isFailure() const { return isFailure_; }

private:
    [[nodiscard]] bool isFull() const { return options_.limit && count_ >= *options_.limit; }

    /// @param call  with a sink of findings
    template <typename Call>
    void supervise(Call const& call) {
        // Streams have other numbers each time, and there may be new ones.
        areIedsKnown_ = false;
        words_.emplace(supervision_.index(), names_, [this](std::uint32_t file) {
            return std::string_view(supervision_.index().files()[file].summary.path);
        });
        try {
            call([this](Finding const& finding) { take(finding); });
        } catch (OutputError const&) {
            throw;
        } catch (std::system_error const& error) {
            run_.complainOf(plural(supervision_.index().files().size(), "file"),
                            faultText(error.code()));
        }
    }

    void take(Finding const& finding) {
        TrafficIndex const& index = supervision_.index();
        bool const isOfWatched =
            !finding.stream || wanted_->isWatched(index, index.streams()[*finding.stream]);
        if (!isOfWatched || !wanted_->isWanted(finding)) {
            return;
        }
        isFailure_ = isFailure_ || wanted_->failsOn(finding.severity());
        if (isFull()) {
            return;
        }
        if (!std::exchange(areIedsKnown_, true)) {
            names_.look(index);
        }
        // Files keep their numbers.
        while (files_.size() < index.files().size()) {
            files_.push_back(index.files()[files_.size()].summary.path);
        }
        writer_.write({.finding = &finding,
                       .index = &index,
                       .words = &*words_,
                       .files = &files_,
                       .names = &names_});
        ++count_;
    }

    CommandRun& run_;
    CheckOptions const& options_;
    NamesOfRun names_;
    LiveSupervision supervision_;
    RowWriter<FindingRow> writer_;
    std::optional<FindingText> words_;
    /// Of the captures, by the numbers of the files.
    std::vector<std::string> files_;
    /// Set when there is something.
    std::optional<WantedFindings> wanted_;
    std::uint64_t count_ = 0;
    bool areIedsKnown_ = false;
    bool isFailure_ = false;
};

}  // namespace

ExitStatus followCheck(CheckOptions const& options) {
    if (options.isSummary) {
        throw UsageError("--follow tells findings; --summary does not go with it");
    }
    CommandRun run = CommandRun::following(options.common);
    FollowedCaptures captures(options.common.files, {});
    FindingLines lines(run, options);
    followCaptures(
        run, options.follow, FollowPace::steady, captures,
        [&](std::vector<AddedTraffic>&& added) { return lines.write(std::move(added)); });
    lines.finish();
    ExitStatus const status = run.finish();
    return lines.isFailure() ? ExitStatus::findings : status;
}

}  // namespace TalIec61850Tools
