#include "tools/commands/PlotCommand.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/PicturedTraffic.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/PlotOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/plot/LaneChoice.hpp"
#include "tools/plot/PlotPage.hpp"
#include "tools/plot/ReadSamples.hpp"
#include "tools/render/SampleDelay.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Finding;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::TrafficStream;

namespace {

// What a picture has room for.
constexpr std::size_t kMostStreams = 8;
constexpr std::size_t kMostPanels = 16;
constexpr std::size_t kMostLanes = 24;

std::string plotNotes() {
    return paragraph(fmt::format(
               "The picture is one SVG file that loads nothing: waveforms, a panel for each unit, "
               "with a legend; GOOSE states below them, findings, and one axis of time in UTC. It "
               "has the colours of the page that report writes. Of SV streams, the first {} are in "
               "it, of GOOSE members those that change, at most {}; of streams of which none "
               "changes, all. What is left out is told in the picture and, where there was no room "
               "for it, on standard error.",
               kMostStreams, kMostLanes)) +
           "\n" +
           paragraph(
               "Where there are more samples than pixels, the least and the largest of each column "
               "of pixels are drawn: the size of a picture does not grow with the captures. "
               "--around and --span select a short time.") +
           "\n" +
           paragraph(
               "Currents and voltages are shown where samples are those of 9-2LE or --scl has "
               "their units, counts otherwise. With --svid and --gocbref, streams of each protocol "
               "are those of that name.") +
           "\n" + paragraph(kNameNotes) + "\n" + paragraph(layoutNotes()) + "\n" + kTimeNotes +
           "\n" + paragraph(kContentNotes);
}

/// The picture of a run.
class Plot {
public:
    explicit Plot(PlotOptions const& options)
        : options_(options),
          run_(options.choice.common),
          traffic_(run_, options.choice),
          svStreams_(traffic_.wanted(Protocol::sv)),
          gooseStreams_(traffic_.wanted(Protocol::goose)) {
        content_.from = traffic_.from();
        content_.to = traffic_.to();
    }

    ExitStatus write() {
        addFindings();
        addSamples();
        options_.choice.checkChannels(mostChannels_);
        addStates();
        addWords();
        run_.sink()(drawPlot(content_, style()));
        traffic_.noteIfNone();
        return run_.finish();
    }

private:
    [[nodiscard]] PlotStyle style() const {
        PlotStyle style{.theme = options_.isDark ? Theme::dark : Theme::light,
                        .width = static_cast<double>(options_.width)};
        if (options_.height) {
            style.height = static_cast<double>(*options_.height);
        }
        return style;
    }

    void addFindings() {
        // Marks of one pixel are one: of each severity, the first of each quarter of it is drawn.
        constexpr std::size_t kPartsOfPixel = 4;
        constexpr std::size_t kSeverities = 3;
        std::size_t const parts = kPartsOfPixel * static_cast<std::size_t>(options_.width);
        std::size_t const places = parts + 3;  // and what is before, at the end, and after
        std::vector<bool> isMarked(kSeverities * places, false);
        auto const after = [&](std::int64_t time) {
            return static_cast<double>(static_cast<std::uint64_t>(time) -
                                       static_cast<std::uint64_t>(content_.from));
        };
        auto const placeOf = [&, length = std::max(1.0, after(content_.to))](std::int64_t time) {
            if (time < content_.from) {
                return std::size_t{0};
            }
            double const part = after(time) / length * static_cast<double>(parts);
            return time > content_.to ? parts + 2 : 1 + static_cast<std::size_t>(part);
        };
        traffic_.supervise([&](Finding const& finding) {
            if (finding.from == kNoTime) {
                return;
            }
            std::size_t const place =
                static_cast<std::size_t>(finding.severity()) * places + placeOf(finding.from);
            if (!isMarked[place]) {
                isMarked[place] = true;
                content_.findings.push_back({.time = finding.from, .severity = finding.severity()});
            }
        });
    }

    [[nodiscard]] SamplesWish wishOf(TrafficStream const& stream) {
        PicturedSamples samples = traffic_.samplesOf(stream);
        SamplesWish wish;
        wish.samples = std::move(samples.options);
        wish.described = samples.described;
        wish.channels = std::move(samples.channels);
        wish.scales = options_.choice.scales;
        wish.pixels = static_cast<std::size_t>(options_.width);
        wish.admits = [this](SampleBlock const& block) { return traffic_.isWanted(block); };
        return wish;
    }

    void addSamples() {
        std::size_t panels = 0;
        for (std::size_t const number : svStreams_) {
            if (content_.samples.size() == kMostStreams || panels >= kMostPanels) {
                ++streamsWithoutRoom_;
                continue;
            }
            traffic_.attempt([&] {
                TrafficStream const& stream = traffic_.index().streams()[number];
                ReadSamplesResult read = readSamples(traffic_.index(), stream, wishOf(stream));
                if (read.samples.panels.empty()) {
                    ++streamsWithoutSamples_;
                    return;
                }
                read.samples.name = traffic_.names().of(stream);
                delays_.add(read.delay, read.samples.name);
                takeSamples(std::move(read), kMostPanels - panels);
                panels += content_.samples.back().panels.size();
            });
        }
    }

    void takeSamples(ReadSamplesResult read, std::size_t mostPanels) {
        mostChannels_ = std::max(mostChannels_, read.samples.envelopes.channelsOfStream);
        channelsWithoutRoom_ += read.channelsLeftOut;
        notFinite_ += read.notFinite;
        if (!traffic_.window().from && read.first != kNoTime) {
            content_.from = std::min(content_.from, read.first);
        }
        if (!traffic_.window().to && read.last != kNoTime) {
            content_.to = std::max(content_.to, read.last);
        }
        auto& panels = read.samples.panels;
        for (; panels.size() > mostPanels; panels.pop_back()) {
            channelsWithoutRoom_ += panels.back().size();
        }
        content_.samples.push_back(std::move(read.samples));
    }

    void addStates() {
        auto const mostIntervals = std::max<std::size_t>(16, options_.width / 4);
        LaneChoice choice(kMostLanes, kMostStreams);
        for (std::size_t const number : gooseStreams_) {
            traffic_.attempt([&] {
                ReadLanesResult read = readLanes(traffic_.index(), number, traffic_.window(),
                                                 mostIntervals, traffic_.names());
                choice.countWithoutRoom(read.leftOut);
                choice.add(std::move(read.states));
            });
        }
        membersWithoutRoom_ = choice.withoutRoom();
        unchanging_ = choice.unchanging();
        content_.states = choice.take();
    }

    void addWords() {
        std::vector<std::string> names;
        for (PlottedSamples const& samples : content_.samples) {
            names.push_back(samples.name);
        }
        for (PlottedStates const& states : content_.states) {
            names.push_back(states.name);
        }
        auto const& files = traffic_.files();
        content_.source = files.size() == 1
                              ? escapeText(std::filesystem::path(files.front()).filename().string())
                              : plural(files.size(), "capture");
        content_.title =
            names.empty() ? content_.source : fmt::format("{}", fmt::join(names, ", "));
        if (!options_.title.empty()) {
            content_.title = escapeText(options_.title);
        }
        content_.delayNote = delays_.text();
        addAbsences();
        tellLeftOut();
    }

    /// Of what was not asked for, nothing is said, unless nothing is left.
    void addAbsences() {
        bool const isNothing = svStreams_.empty() && gooseStreams_.empty();
        if (!svStreams_.empty()) {
            content_.noSamples =
                "No samples can be drawn in this time: there are none, or what they are made of is "
                "not known (--layout).";
        } else if (hasNone(Protocol::sv)) {
            content_.noSamples = "There is no stream of Sampled Values.";
        } else if (isNothing) {
            content_.noSamples = "No stream of Sampled Values is selected.";
        }
        if (!gooseStreams_.empty()) {
            content_.noStates = "No GOOSE stream has members to draw in this time.";
        } else if (hasNone(Protocol::goose)) {
            content_.noStates = "There is no GOOSE stream.";
        } else if (isNothing) {
            content_.noStates = "No GOOSE stream is selected.";
        }
        content_.noFindings = traffic_.index().streams().empty()
                                  ? "Nothing was looked for: no frame of GOOSE or SV was read."
                                  : "Nothing was found.";
    }

    [[nodiscard]] bool hasNone(Protocol protocol) const {
        auto const& streams = traffic_.index().streams();
        return std::none_of(streams.begin(), streams.end(), [&](TrafficStream const& stream) {
            return stream.key.protocol == protocol;
        });
    }

    void tellLeftOut() {
        std::vector<std::string> parts;
        auto const add = [&](std::uint64_t count, std::string_view noun) {
            if (count > 0) {
                parts.push_back(plural(count, noun));
            }
        };
        add(streamsWithoutRoom_, "SV stream");
        add(channelsWithoutRoom_, "channel");
        add(membersWithoutRoom_, "GOOSE member");
        if (!parts.empty()) {
            run_.note(
                fmt::format("no room in the picture for {}: select fewer by --svid, "
                            "--gocbref or --channels",
                            fmt::join(parts, ", ")));
        }
        if (streamsWithoutSamples_ > 0 && !content_.samples.empty()) {
            parts.push_back(plural(streamsWithoutSamples_, "SV stream") + " without known samples");
        }
        if (notFinite_ > 0) {
            parts.push_back(fmt::format("values that are infinite or no number ({})", notFinite_));
        }
        add(unchanging_, "GOOSE member");
        if (unchanging_ > 0) {
            parts.back() += unchanging_ == 1 ? " that does not change" : " that do not change";
        }
        if (!parts.empty()) {
            content_.leftOut = fmt::format("Not shown: {}.", fmt::join(parts, ", "));
        }
    }

    PlotOptions const& options_;
    CommandRun run_;
    PicturedTraffic traffic_;
    std::vector<std::size_t> svStreams_;
    std::vector<std::size_t> gooseStreams_;
    PlotContent content_;
    DelayNote delays_;
    /// Of a stream.
    std::size_t mostChannels_ = 0;
    std::uint64_t streamsWithoutRoom_ = 0;
    std::uint64_t streamsWithoutSamples_ = 0;
    std::uint64_t channelsWithoutRoom_ = 0;
    std::uint64_t membersWithoutRoom_ = 0;
    std::uint64_t unchanging_ = 0;
    std::uint64_t notFinite_ = 0;
};

ExitStatus runPlot(PlotOptions const& options) {
    options.choice.window.check();
    checkNameOptions(options.choice.common, options.choice.criteria);
    Plot plot(options);
    return plot.write();
}

}  // namespace

void addPlotCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<PlotOptions>();
    CommandDefinition& command =
        addCommand(program, "plot", "Draw a window of time as an SVG picture for documents.");
    addPlotOptions(command, *options);
    command.notes = plotNotes();
    command.examples = {"tal-iec61850 plot -o trip.svg --around 10:00:00.28 --span 200ms bay1.pcap",
                        "tal-iec61850 plot -o bay1.svg --svid MU01 --gocbref 'BAY1*' bay1.pcap",
                        "tal-iec61850 plot -o dark.svg --theme dark --width 1600 bay1.pcap"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runPlot(*options); }; });
}

}  // namespace TalIec61850Tools
