#include "tools/commands/EventsCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <system_error>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/EventTimeline.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NamedGoose.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/EventsOptions.hpp"
#include "tools/options/JobsOption.hpp"
#include "tools/options/LimitOption.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/RefuseRowOptions.hpp"
#include "tools/options/RepeatableOption.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/options/WindowOptions.hpp"
#include "tools/output/OutputError.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/EventRow.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/selection/RedundancyRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::EventOptions;
using TalIec61850Analysis::GooseEvent;
using TalIec61850Analysis::MemberChange;
using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::StreamPart;
using TalIec61850Analysis::TrafficStream;

namespace {

std::string eventsNotes() {
    auto const fields = listFields(fieldNames(eventRowLayout(Format::json, true)),
                                   {{"timeNs", "arrival, nanoseconds since 1970"},
                                    {"t", "of the message: when the state began"},
                                    {"delayNs", "timeNs less tNs"},
                                    {"changes", "objects of member, name, from, to"},
                                    {"retransmissionsNs", "after timeNs"},
                                    {"retransmissions", "how many, listed or not"},
                                    {"timeAllowedtoLive", "milliseconds"},
                                    {"longestIntervalNs", "between two messages of the state"},
                                    {"position", "of the goosePdu, in octets"},
                                    {"controlBlock", "as ied, with --scl alone"}});
    return paragraph(
               "A row is a new state of a GOOSE stream: its first message that came. Rows come in "
               "the order of arrival, over all streams and files. The first message of a stream, "
               "late ones and those that were sent again are no events; what came over two LANs or "
               "lanes, or is in two files, is one. Where stNum falls to 1 and goes on from there, "
               "or falls after the time allowed to live, the publisher began anew: that is an "
               "event "
               "too.") +
           "\n" +
           paragraph(
               "changes are the values that differ from those of the message before, qualities and "
               "time stamps among them, by their places in the data set: 3, or 9.2 for the second "
               "value inside the ninth, as show numbers them. Where number, nesting or types of "
               "values changed, all values are listed, with none for what was not there. Where a "
               "snap length cut the message or the one before, changes are not known.") +
           "\n" +
           paragraph(
               "--member shows the events that change a value of that place, and of their changes "
               "these alone: * is any text, so 9.* are the values inside the ninth. "
               "retransmissionsNs has the first 64. AGAIN is how many there were, TAL the time "
               "allowed "
               "to live of the event itself, which may be short where a publisher lengthens it "
               "with "
               "its intervals. "
               "nextStream is the next other stream that changed within a second, or what "
               "--next-within says, be it in the window or not.") +
           "\n" +
           paragraph(
               std::string(kNameNotes) +
               " --member takes names too, with or without the logical device and the IED in "
               "front: PTRC1.Tr.general, LD0/PTRC1.Tr.general, IED1LD0/PTRC1.Tr.general. In "
               "texts, names have the IED in front where streams of several IEDs are listed; in "
               "json, they have not.") +
           "\n" + kTimeNotes + "\n" + paragraph(kClockNotes) + "\n" + paragraph(kContentNotes) +
           "\n" +
           paragraph(
               "--timeline draws a line for each member of a stream, the first 16, and of more "
               "those that change; --member chooses others. True and on are filled, false and off "
               "a thin line, other values are written where they hold. A value begins in the "
               "column in which it came; a shaded column has more than one change. Dots: the value "
               "is not known, as messages are missing, or the time allowed to live is over. Marks "
               "below: the quality that follows in the data set is not good. Qualities and time "
               "stamps are drawn where --member names them. As wide as --plot of samples.") +
           "\n" +
           paragraph("The fields of json: " + fields +
                     ". csv has the same, with changes as a text, and blanks between times.");
}

/// Writes the events of all streams.
class EventList {
public:
    EventList(CommandRun& run, EventsOptions const& options)
        : run_(run),
          options_(options),
          writer_(run.rowWriter(chooseColumns(
              eventRowLayout(options.common.format, !options.common.descriptions.empty()),
              options.common.columns))),
          goose_(run, options) {}

    ExitStatus write() {
        if (!isFull()) {
            find();
        }
        writer_.finish();
        if (rows_ == 0 && options_.limit != 0U && !isLost_) {
            goose_.noteNone(
                run_, options_,
                options_.members.empty() ? "no state changed" : "no such member changed");
        }
        run_.writeSummary(fmt::format(
            "{} of {} in {}{}", plural(rows_, "event"), plural(streams_.size(), "stream"),
            plural(run_.captures().size(), "file"), isFull() ? "; more may be there" : ""));
        return run_.finish();
    }

private:
    void find() {
        EventOptions options;
        options.takes = [&](StreamKey const& key) {
            return isWanted(goose_.index, *goose_.index.find(key), goose_.criteria);
        };
        options.window = options_.window.resolve(spanOf(goose_.index));
        options.nextWithin = options_.nextWithin.value_or(options.nextWithin);
        options.stop = full_.get_token();
        try {
            findEvents(goose_.index, options, [&](GooseEvent const& event) { take(event); });
        } catch (OutputError const&) {
            throw;
        } catch (std::system_error const& error) {
            isLost_ = true;
            auto const& captures = run_.captures();
            run_.complainOf(captures.size() == 1 ? captures.front().name : "one of the captures",
                            faultText(error.code()));
        }
    }

    void take(GooseEvent const& event) {
        TrafficStream const& stream = goose_.index.streams()[event.stream];
        StreamPart const& part = stream.parts[event.place.packet.part];
        if (!PartPackets(goose_.criteria, goose_.index, part).admit(event.place.packet.packet)) {
            return;
        }
        EventRow row{.event = &event,
                     .stream = &stream,
                     .next = event.next ? &goose_.index.streams()[event.next->stream] : nullptr,
                     .file = &run_.captures()[event.place.file].name,
                     .changes = {},
                     .names = event.changes.empty()
                                  ? MemberNames()
                                  : goose_.messages.of(event.stream, event.place.packet),
                     .controlBlock = goose_.names.controlBlockOf(stream.key),
                     .withIeds = goose_.names.areOfSeveralIeds()};
        for (MemberChange const& change : event.changes) {
            if (meetsPattern(options_.members, memberText(change.member)) ||
                row.names.meet(options_.members, change.member)) {
                row.changes.push_back(&change);
            }
        }
        if (row.changes.empty() && !options_.members.empty()) {
            return;
        }
        writer_.write(row);
        streams_.insert(event.stream);
        ++rows_;
        if (isFull()) {
            full_.request_stop();
        }
    }

    [[nodiscard]] bool isFull() const { return options_.limit && rows_ >= *options_.limit; }

    CommandRun& run_;
    EventsOptions const& options_;
    RowWriter<EventRow> writer_;
    NamedGoose goose_;
    std::stop_source full_;
    std::set<std::size_t> streams_;
    std::uint64_t rows_ = 0;
    bool isLost_ = false;
};

ExitStatus runEvents(EventsOptions const& options, CLI::App const& parser) {
    if (options.isTimeline) {
        refuseRowOptions(parser, "--timeline", {"--limit", "--next-within"});
    }
    if (options.criteria.protocol == Protocol::sv) {
        throw UsageError("--protocol sv: SV has no states");
    }
    options.window.check();
    checkNameOptions(options.common, options.criteria);
    CommandRun run(options.common);
    if (options.isTimeline) {
        return drawTimeline(run, options);
    }
    EventList list(run, options);
    return list.write();
}

void addEventOptions(CommandDefinition& command, EventsOptions& options) {
    constexpr char const* kEventsGroup = "Which events";
    addRepeatable(command, "--member", options.members, "PATTERN",
                  "Changes of this value alone, such as 3, 9.2 or 9.*, by name 'PTRC*.Tr.general'",
                  [](std::string const&, std::string const& text) { return text; })
        .group(kEventsGroup);
    addLengthOption(command, "--next-within", options.nextWithin,
                    "How long after an event another stream may be the next; 1s if not said");
    addLimitOption(command, options.limit, kEventsGroup);
    command.parser->add_flag("--timeline", options.isTimeline,
                             "Values of members over time in place of rows, as wide as the "
                             "terminal");
}

}  // namespace

void addEventsCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<EventsOptions>();
    CommandDefinition& command =
        addCommand(program, "events", "List the state changes of GOOSE streams, and what changed.");
    addCommonOptions(command, options->common);
    addJobsOption(command, options->common.jobs);
    addWindowOptions(command, options->window);
    addEventOptions(command, *options);
    addContentOptions(command, options->criteria);
    addNameOptions(command, options->common, options->criteria);
    command.notes = eventsNotes();
    command.examples = {"tal-iec61850 events bay1.pcap",
                        "tal-iec61850 events --gocbref '*gcbTrip' --around 10:00:00.28 bay1.pcap",
                        "tal-iec61850 events --member '9.*' -f json captures/",
                        "tal-iec61850 events --timeline --around 10:00:00.28 bay1.pcap",
                        "tal-iec61850 events --scl station.scd --member 'PTRC*.Tr.general' a.pcap"};
    command.parser->callback([options, &chosen, parser = command.parser] {
        chosen = [options, parser] { return runEvents(*options, *parser); };
    });
}

}  // namespace TalIec61850Tools
