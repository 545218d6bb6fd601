#include "tools/commands/StreamsCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/SelectionOptions.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/StreamLayout.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kStreamsNotes = R"(What the columns mean:
  Identity     SOURCE, DESTINATION, VLAN, APPID, HSR lane (SV), R1B0
               (bit 0 of the second octet of Reserved 1), CONFREV,
               SIM-ELEM and the names tell streams apart.
  HSR          GOOSE streams are not told apart by HSR lane: what is
               shown is that of the stream's first packet. So is the PRP
               network (prpLane) of any stream.
  SIM-ELEM     GOOSE: whether frames carry the simulation element, be it
               true or false.
  FIRST, LAST  Capture times, UTC. PACKETS/S is the mean rate between
               them.

)";

std::string streamsNotes() {
    auto const fields =
        listFields(fieldNames(streamLayout()), {{"lastTimeNs", "nanoseconds since 1970"}});
    return kStreamsNotes + paragraph(kCriteriaNotes) + "\n" +
           paragraph("The fields of json and csv: " + fields + ".");
}

std::string summaryOf(std::vector<StreamRow> const& rows, std::size_t captures) {
    std::uint64_t packets = 0;
    for (StreamRow const& row : rows) {
        packets += row.packets;
    }
    auto const goose = static_cast<std::uint64_t>(
        std::count_if(rows.begin(), rows.end(),
                      [](StreamRow const& row) { return row.protocol == Protocol::goose; }));
    auto const times = timesOf(rows);
    std::string const span =
        times ? fmt::format(", {} to {}", toUtcText(times->first), toUtcText(times->last))
              : std::string();
    return fmt::format("{} ({} GOOSE, {} SV), {} in {}{}", plural(rows.size(), "stream"), goose,
                       rows.size() - goose, plural(packets, "packet"), plural(captures, "file"),
                       span);
}

/// What the command takes, whatever it is called.
void defineStreams(CommandDefinition& command, Action& chosen) {
    auto const options = std::make_shared<StreamsOptions>();
    CLI::App& parser = *command.parser;
    addCommonOptions(command, options->common);
    CLI::Option& sort = *parser.add_option(
        "--sort", options->order.key,
        fmt::format("Order of the rows: {}", fmt::join(streamOrderKeys(), ", ")));
    sort.option_text("KEY");
    allowOnly(command, sort, streamOrderKeys());
    parser.add_flag("-r,--reverse", options->order.isReversed, "The other way round");
    addCriteriaOptions(command, options->criteria);
    command.notes = streamsNotes();
    parser.callback([options, &chosen] { chosen = [options] { return runStreams(*options); }; });
}

}  // namespace

void addStreamsCommand(ProgramDefinition& program, Action& chosen) {
    CommandDefinition& command =
        addCommand(program, "streams", "List the GOOSE and SV streams of captures.");
    defineStreams(command, chosen);
    command.examples = {"tal-iec61850 streams --format json bay1.pcap bay2.pcap",
                        "tal-iec61850 streams --protocol sv --sort packets --reverse captures/"};
}

void addLibraryStreamsCommand(ProgramDefinition& program, CommandDefinition const& group,
                              Action& chosen) {
    CommandDefinition& command =
        addCommand(program, group, "streams", "List the streams of the library's index.");
    defineStreams(command, chosen);
    command.examples = {"tal-iec61850 library streams --format json bay1.pcap bay2.pcap"};
}

ExitStatus runStreams(StreamsOptions const& options) {
    auto const layout = chooseColumns(streamLayout(), options.common.columns);
    CommandRun run(options.common);
    CaptureIndex const index = run.index(toIndexFilter(options.criteria));
    std::vector<StreamRow> rows = collectRows(index.db);
    std::erase_if(rows, [&](StreamRow const& row) { return !options.criteria.admit(row); });
    sortRows(rows, options.order);
    auto writer = run.rowWriter(layout);
    for (StreamRow const& row : rows) {
        writer.write(row);
    }
    writer.finish();
    if (rows.empty()) {
        noteNoStreams(run, options.criteria);
    }
    run.writeSummary(summaryOf(rows, run.captures().size()));
    return run.finish();
}

}  // namespace TalIec61850Tools
