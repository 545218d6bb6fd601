#include "tools/commands/ReportCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/PicturedTraffic.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/ReportOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/EventRow.hpp"
#include "tools/render/RoundTicks.hpp"
#include "tools/report/EventsSection.hpp"
#include "tools/report/FindingsSection.hpp"
#include "tools/report/HtmlText.hpp"
#include "tools/report/PageTemplate.hpp"
#include "tools/report/ReportHead.hpp"
#include "tools/report/ReportPage.hpp"
#include "tools/report/StatesSection.hpp"
#include "tools/report/StreamsSection.hpp"
#include "tools/report/WaveformsSection.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Finding;
using TalIec61850Analysis::GooseEvent;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::MemberChange;
using TalIec61850Analysis::PairingOptions;
using TalIec61850Analysis::RedundancyFault;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::StreamSummary;
using TalIec61850Analysis::TrafficRedundancy;
using TalIec61850Analysis::TrafficStream;

namespace {

std::string reportNotes() {
    return paragraph(
               "The page is one file that needs no other, and loads nothing: what happened in five "
               "lines, waveforms, GOOSE states and findings on one time axis, with two cursors, "
               "RMS and phasors; and tables of streams, findings, events and copies over both "
               "ways, which need no script.") +
           "\n" +
           paragraph(
               "FILE.html#t=NANOSECONDS&span=NANOSECONDS opens at that time since 1970, with the "
               "cursor there; the address follows as one zooms. Samples are in the page as they "
               "were sent, as long as they fit into --max-size. Of streams that do not fit, the "
               "largest first, the least and the largest value of columns are; the page says so. "
               "--around and --span select a short time.") +
           "\n" +
           paragraph(
               "Currents and voltages are shown where samples are those of 9-2LE or --scale says "
               "so, counts otherwise. The window selects samples, states, findings and events; the "
               "figures of streams are those of the whole captures. Findings do not change the "
               "exit status: that is what check is for. With --svid and --gocbref, streams of each "
               "protocol are those of that name.") +
           "\n" + paragraph(kNameNotes) + "\n" + paragraph(layoutNotes()) + "\n" + kTimeNotes +
           "\n" + paragraph(kContentNotes);
}

/// Each step that the time axis may have, and what of an instant's text its labels have.
nlohmann::ordered_json stepsOfAxis() {
    auto steps = nlohmann::ordered_json::array();
    for (TimeStep const& step : timeSteps()) {
        steps.push_back({step.length, step.first, step.end});
    }
    return steps;
}

/// The page of a run.
class Report {
public:
    explicit Report(ReportOptions const& options)
        : options_(options),
          run_(options.choice.common),
          traffic_(run_, options.choice),
          words_(traffic_.index(), traffic_.described(), traffic_.nameOfFile()),
          findings_({.index = traffic_.index(),
                     .text = words_,
                     .files = traffic_.files(),
                     .names = traffic_.described()},
                    partOf(8)) {}

    ExitStatus write() {
        supervise();
        listEvents();
        pair();
        drawStates();
        writeHead();
        drawStreams();
        finishPage();
        writePage(page_, run_.sink());
        traffic_.noteIfNone();
        return run_.finish();
    }

private:
    /// Octets of a part of the page at most.
    [[nodiscard]] std::size_t partOf(std::uint64_t part) const {
        return static_cast<std::size_t>(options_.maxSize / part);
    }

    void supervise() {
        traffic_.supervise([&](Finding const& finding) { findings_.add(finding); },
                           [&](StreamSummary const& each) { summaries_.push_back(each); });
        sortSummaries(summaries_, traffic_.index());
        page_.findings = findings_.finish();
        addAbsent(findings_.absent());
        page_.streams = streamsSection(summaries_, traffic_.index(), partOf(16));
    }

    void listEvents() {
        EventsSection section(partOf(8));
        traffic_.attempt([&] {
            findEvents(traffic_.index(), traffic_.events(),
                       [&](GooseEvent const& event) { section.add(rowOf(event)); });
        });
        page_.events = section.finish();
        eventsLine_ = eventsLine(section.inShort(), traffic_.index(), traffic_.names());
    }

    [[nodiscard]] EventRow rowOf(GooseEvent const& event) {
        auto const& streams = traffic_.index().streams();
        EventRow row{.event = &event,
                     .stream = &streams[event.stream],
                     .next = event.next ? &streams[event.next->stream] : nullptr,
                     .file = &traffic_.files()[event.place.file],
                     .changes = {},
                     .names = event.changes.empty()
                                  ? MemberNames()
                                  : traffic_.messages().of(event.stream, event.place.packet),
                     .withIeds = traffic_.described().areOfSeveralIeds()};
        for (MemberChange const& change : event.changes) {
            row.changes.push_back(&change);
        }
        return row;
    }

    void pair() {
        TrafficRedundancy redundancy;
        traffic_.attempt([&] {
            redundancy = pairCopies(traffic_.index(),
                                    PairingOptions{.window = traffic_.window(), .stop = {}},
                                    [](RedundancyFault const&) {});
        });
        page_.redundancy =
            redundancySection(redundancy, traffic_.index(), traffic_.areWanted(), partOf(16));
    }

    /// A share of the page's size, in pieces of so many octets, among so many.
    [[nodiscard]] std::size_t share(std::uint64_t octetsEach, std::size_t among) const {
        constexpr std::uint64_t kPart = 8;
        return static_cast<std::size_t>(options_.maxSize / kPart / octetsEach /
                                        std::max<std::size_t>(1, among));
    }

    void drawStates() {
        constexpr std::uint64_t kOctetsOfInterval = 100;
        auto const streams = traffic_.wanted(Protocol::goose);
        LanePictureWish wish;
        wish.window = traffic_.window();
        wish.from = traffic_.from();
        wish.mostIntervals = std::clamp<std::size_t>(
            share(kOctetsOfInterval, streams.size() * wish.mostLanes), 16, 4096);
        StatesSection section(traffic_.index(), traffic_.names(), wish, partOf(6));
        for (std::size_t const stream : streams) {
            traffic_.attempt([&] { section.add(stream); });
        }
        goose_ = section.json();
        addAbsent(section.absent(streams.size()));
    }

    void addAbsent(std::vector<std::string> const& sentences) {
        page_.absent.insert(page_.absent.end(), sentences.begin(), sentences.end());
    }

    [[nodiscard]] PageStreamWish wishOf(TrafficStream const& stream, std::size_t streams) {
        constexpr std::uint64_t kOctetsOfSpan = 30;
        constexpr std::uint64_t kFewestValues = 8'000'000;
        constexpr std::uint64_t kMostValues = 64'000'000;
        constexpr std::size_t kUsualLists = 9;
        PicturedSamples samples = traffic_.samplesOf(stream);
        PageStreamWish wish;
        wish.samples = samples.options;
        wish.described = samples.described;
        wish.channels = std::move(samples.channels);
        wish.scales = options_.choice.scales;
        wish.from = traffic_.from();
        // More seldom fit: few values take less than half an octet.
        wish.mostValues =
            static_cast<std::size_t>(std::clamp(options_.maxSize * 2, kFewestValues, kMostValues));
        wish.mostSpans =
            std::clamp<std::size_t>(share(kOctetsOfSpan, streams * kUsualLists), 16, 1024);
        wish.admits = [this](SampleBlock const& block) { return traffic_.isWanted(block); };
        return wish;
    }

    void drawStreams() {
        auto const streams = traffic_.wanted(Protocol::sv);
        std::size_t const rest = sizeOfRest();
        WaveformsSection section(
            traffic_.index(), traffic_.names(),
            [&](TrafficStream const& stream) { return wishOf(stream, streams.size()); },
            options_.maxSize > rest ? options_.maxSize - rest : 0);
        for (std::size_t const stream : streams) {
            traffic_.attempt([&] { section.add(stream); });
        }
        options_.choice.checkChannels(section.mostChannels());
        addAbsent(section.absent(streams.size()));
        if (std::string note = section.delayNote(); !note.empty()) {
            page_.absent.push_back(std::move(note));
        }
        if (section.isEmpty()) {
            page_.absentArrival.emplace_back("There are no samples in this time.");
        }
        waveforms_ = section.take(options_.maxSize);
        page_.octets = std::move(waveforms_.octets);
    }

    /// What the page has besides the streams of Sampled Values.
    [[nodiscard]] std::size_t sizeOfRest() const {
        constexpr std::size_t kOthers = 8192;
        PageFiles const& files = pageFiles();
        return files.page.size() + files.style.size() + files.script.size() +
               files.chartStyle.size() + files.chartScript.size() + 2 * files.chartLicence.size() +
               page_.streams.size() + page_.findings.size() + page_.events.size() +
               page_.redundancy.size() + scriptSize(goose_) + findings_.octetsOfMarks() +
               sizeOfTexts() + kOthers;
    }

    /// Of the title, the head and what is absent: the line of waveforms has eight names at most,
    /// and the note of delays has one.
    [[nodiscard]] std::size_t sizeOfTexts() const {
        constexpr std::size_t kOctetsOfElement = 32;
        constexpr std::size_t kNames = 9;
        std::size_t size = 2 * toHtml(page_.title).size();
        for (auto const* const texts : {&page_.head, &page_.absent}) {
            for (std::string const& text : *texts) {
                size += toHtml(text).size() + kOctetsOfElement;
            }
        }
        std::size_t name = 0;
        for (std::size_t const stream : traffic_.wanted(Protocol::sv)) {
            TrafficStream const& known = traffic_.index().streams()[stream];
            name = std::max(name, toHtml(traffic_.names().of(known)).size());
        }
        return size + kNames * name;
    }

    /// All of the head but what is known when the samples are read.
    void writeHead() {
        auto const& files = traffic_.files();
        auto const& index = traffic_.index();
        page_.title =
            "Report: " + (files.size() == 1
                              ? escapeText(std::filesystem::path(files.front()).filename().string())
                              : plural(files.size(), "capture"));
        page_.head = {
            filesText(), clocksLine(summaries_, index, findings_.inShort(), traffic_.names()),
            findingsLine(findings_.inShort(), index, words_, traffic_.names()), eventsLine_};
    }

    void finishPage() {
        page_.head.front() = filesText();
        page_.head.push_back(waveforms_.line);
        auto const [begin, end] = shownTime();
        // An axis is a nanosecond long at least.
        std::int64_t const to = std::max(end, afterTime(begin));
        page_.report = {{"base", std::to_string(traffic_.from())},
                        {"from", std::min(begin, to - 1) - traffic_.from()},
                        {"to", to - traffic_.from()},
                        {"steps", stepsOfAxis()},
                        {"streams", std::move(waveforms_.json)},
                        {"goose", std::move(goose_)},
                        {"marks", findings_.marks(traffic_.from())}};
    }

    [[nodiscard]] std::string filesText() const {
        CaptureSpan const span = spanOf(traffic_.index());
        std::string text = filesLine(traffic_.files(), traffic_.index(), traffic_.areWanted(),
                                     nanosecondsOf(span.begin), nanosecondsOf(span.end));
        if (traffic_.window().from || traffic_.window().to) {
            auto const [begin, end] = shownTime();
            text += fmt::format(" Shown: {} of it.", durationText(begin, end));
        }
        return text;
    }

    /// Samples may have been taken before the captures begin, and after they end.
    [[nodiscard]] std::pair<std::int64_t, std::int64_t> shownTime() const {
        std::int64_t begin = traffic_.from();
        std::int64_t end = traffic_.to();
        if (waveforms_.first != kNoTime) {
            begin = traffic_.window().from ? begin : std::min(begin, waveforms_.first);
            end = traffic_.window().to ? end : std::max(end, waveforms_.last);
        }
        return {begin, end};
    }

    ReportOptions const& options_;
    CommandRun run_;
    PicturedTraffic traffic_;
    FindingText words_;
    FindingsSection findings_;
    std::vector<StreamSummary> summaries_;
    std::string eventsLine_;
    nlohmann::ordered_json goose_;
    Waveforms waveforms_;
    ReportPage page_;
};

ExitStatus runReport(ReportOptions const& options) {
    options.choice.window.check();
    checkNameOptions(options.choice.common, options.choice.criteria);
    Report report(options);
    return report.write();
}

}  // namespace

void addReportCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<ReportOptions>();
    CommandDefinition& command = addCommand(
        program, "report", "Write a page of what happened: waveforms, GOOSE states, findings.");
    addReportOptions(command, *options);
    command.notes = reportNotes();
    command.examples = {"tal-iec61850 report -o bay1.html bay1.pcap",
                        "tal-iec61850 report -o trip.html --around 10:00:00.28 --span 2s bay1.pcap",
                        "tal-iec61850 report -o named.html --scl station.scd bay1.pcap",
                        "tal-iec61850 report -o small.html --max-size 3M --svid 'MU*' captures/"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runReport(*options); }; });
}

}  // namespace TalIec61850Tools
