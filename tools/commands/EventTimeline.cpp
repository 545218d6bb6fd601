#include "tools/commands/EventTimeline.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NamedGoose.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/output/OutputError.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/AddressText.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/MemberText.hpp"
#include "tools/render/PictureLanes.hpp"
#include "tools/render/PictureNames.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/selection/RedundancyRow.hpp"
#include "tools/terminal/HeadLine.hpp"
#include "tools/terminal/TimelineRows.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::LaneOptions;
using TalIec61850Analysis::MemberLane;
using TalIec61850Analysis::MemberLanes;
using TalIec61850Analysis::TimeWindow;
using TalIec61850Analysis::TrafficStream;

namespace {

/// Lanes of a stream at most: more are no picture to look at.
constexpr std::size_t kMostTimelineLanes = 16;

/// Draws the streams of a run.
class EventTimeline {
public:
    EventTimeline(CommandRun& run, EventsOptions const& options)
        : run_(run), options_(options), goose_(run, options), form_(run.textForm()) {
        CaptureSpan const captured = spanOf(goose_.index);
        window_ = options.window.resolve(captured);
        from_ = std::max(window_.from.value_or(captured.begin), captured.begin);
        to_ = std::min(window_.to.value_or(captured.end), captured.end);
    }

    ExitStatus draw() {
        bool isLost = false;
        for (std::size_t number = 0; number < goose_.index.streams().size(); ++number) {
            if (!isWanted(goose_.index, goose_.index.streams()[number], goose_.criteria)) {
                continue;
            }
            try {
                drawStream(number);
            } catch (OutputError const&) {
                throw;
            } catch (std::system_error const& error) {
                isLost = true;
                run_.complainOf(nameOfAll(run_.captures()), faultText(error.code()));
            }
        }
        if (drawnStreams_ == 0 && !isLost) {
            goose_.noteNone(run_, options_,
                            options_.members.empty() ? "no value of a member" : "no such member");
        }
        std::string const summary =
            fmt::format("{} of {} in {}", plural(drawnLanes_, "member"),
                        plural(drawnStreams_, "stream"), plural(run_.captures().size(), "file"));
        run_.writeSummary(wrapText(summary, form_.columns));
        return run_.finish();
    }

private:
    void drawStream(std::size_t number) {
        LaneOptions options;
        options.window = {.from = from_, .to = to_};
        options.mostLanes = options_.members.empty() ? options.mostLanes : kMostOfDataSet;
        MemberLanes const all = readMemberLanes(goose_.index, number, options);
        MemberNames const names = goose_.messages.of(number, {});
        PictureLanes const chosen = lanesOf(all, names);
        if (chosen.lanes.empty()) {
            return;
        }
        TrafficStream const& stream = goose_.index.streams()[number];
        TimelinePicture picture;
        picture.from = nanosecondsOf(from_);
        picture.end = afterTime(nanosecondsOf(to_));
        for (PictureLane const& lane : chosen.lanes) {
            picture.lanes.push_back({.name = nameOf(names, lane.lane->member), .lane = lane});
        }
        std::vector<std::string> words;
        if (stream.key.source) {
            words.push_back(toText(*stream.key.source));
        }
        words.push_back(durationText(picture.from, nanosecondsOf(to_)) + " from " +
                        toUtcText(from_));
        std::string text = drawnStreams_ == 0 ? "" : "\n";
        text += headLine(PictureNames().of(stream), words, form_);
        text += timelineRows(picture, form_);
        if (chosen.leftOut > 0) {
            text += headLine(
                fmt::format("{} left out: see --member", plural(chosen.leftOut, "more member")), {},
                {.columns = form_.columns, .isUtf8 = form_.isUtf8});
        }
        run_.sink()(text);
        run_.flush();
        ++drawnStreams_;
        drawnLanes_ += picture.lanes.size();
    }

    /// Those that the user asks for, of any kind; else those that pictures show.
    [[nodiscard]] PictureLanes lanesOf(MemberLanes const& all, MemberNames const& names) const {
        if (options_.members.empty()) {
            return pictureLanes(all, kMostTimelineLanes);
        }
        PictureLanes const usual = pictureLanes(all, std::numeric_limits<std::size_t>::max());
        PictureLanes chosen;
        for (MemberLane const& lane : all.lanes) {
            bool const isAsked = meetsPattern(options_.members, memberText(lane.member)) ||
                                 names.meet(options_.members, lane.member);
            if (!isAsked || lane.intervals.empty()) {
                continue;
            }
            if (chosen.lanes.size() == kMostTimelineLanes) {
                ++chosen.leftOut;
                continue;
            }
            auto const known =
                std::find_if(usual.lanes.begin(), usual.lanes.end(),
                             [&](PictureLane const& each) { return each.lane == &lane; });
            chosen.lanes.push_back(known == usual.lanes.end()
                                       ? PictureLane{.lane = &lane, .quality = nullptr}
                                       : *known);
        }
        return chosen;
    }

    [[nodiscard]] std::string nameOf(MemberNames const& names,
                                     std::vector<std::uint32_t> const& member) const {
        std::string const name = goose_.names.areOfSeveralIeds()
                                     ? names.fullNameAt(member)
                                     : std::string(names.nameAt(member));
        return name.empty() ? memberText(member) : escapeText(name);
    }

    /// More members than a frame has room for.
    static constexpr std::size_t kMostOfDataSet = 65'536;

    CommandRun& run_;
    EventsOptions const& options_;
    NamedGoose goose_;
    TextForm form_;
    TimeWindow window_;
    /// The first and the last instant of the picture.
    CaptureTime from_;
    CaptureTime to_;
    std::size_t drawnStreams_ = 0;
    std::size_t drawnLanes_ = 0;
};

}  // namespace

ExitStatus drawTimeline(CommandRun& run, EventsOptions const& options) {
    return EventTimeline(run, options).draw();
}

}  // namespace TalIec61850Tools
