#include "tools/commands/StreamsCommand.hpp"

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/JobsOption.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/OrderOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/StreamLayout.hpp"
#include "tools/render/StreamsSummary.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kStreamsNotes = R"(What the columns mean:
  Identity     Source, destination, VLAN tags, APPID, and the gocbRef, or
               the svID of each ASDU, tell streams apart; HSR lane and
               PRP LAN do not.
  SIM          yes where any packet says that it is simulated.
  NOMINAL/S    SV: samples a second by smpRate and smpMod, else by where
               smpCnt begins again.
  PACKETS      What was published: a copy over the other lane or LAN is
               counted in COPIES alone. A/B: all over A, all over B.
  PACKETS/S    Mean rate of PACKETS between FIRST and LAST, capture
               times, UTC.
  CONFREV, DATSET, GOID, ASDUS (in a frame) are those of the last packet.

)";

std::string streamsNotes() {
    auto const fields = listFields(
        fieldNames(streamLayout(true)),
        {{"lastTimeNs", "nanoseconds since 1970"}, {"controlBlock", "as ied, with --scl alone"}});
    return kStreamsNotes + paragraph(kCriteriaNotes) + "\n" + paragraph(kNameNotes) + "\n" +
           paragraph("The fields of json and csv: " + fields + ".");
}

}  // namespace

void addStreamsCommand(ProgramDefinition& program, Action& chosen) {
    CommandDefinition& command =
        addCommand(program, "streams", "List the GOOSE and SV streams of captures.");
    auto const options = std::make_shared<StreamsOptions>();
    addCommonOptions(command, options->common);
    addJobsOption(command, options->common.jobs);
    addOrderOptions(command, options->order, streamOrderKeys<StreamRow>());
    addWireOptions(command, options->criteria);
    addNameOptions(command, options->common, options->criteria);
    command.notes = streamsNotes();
    command.examples = {"tal-iec61850 streams --format json bay1.pcap bay2.pcap",
                        "tal-iec61850 streams --protocol sv --sort packets --reverse captures/",
                        "tal-iec61850 streams --scl station.scd --ied 'BAY1*' bay1.pcap"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runStreams(*options); }; });
}

ExitStatus runStreams(StreamsOptions const& options) {
    checkNameOptions(options.common, options.criteria);
    bool const areDescribed = !options.common.descriptions.empty();
    auto const layout = chooseColumns(streamLayout(areDescribed), options.common.columns);
    CommandRun run(options.common);
    NamesOfRun names(run, options.common);
    PacketCriteria const criteria = names.asking(options.criteria);
    auto const index = indexTraffic(run, criteria, options.common.jobs, names.publishers());
    reportFaults(run, index);
    std::vector<StreamRow> rows = collectRows(index, criteria);
    for (StreamRow& row : rows) {
        row.controlBlock = names.controlBlockOf(row.key());
    }
    sortRows(rows, options.order);
    auto writer = run.rowWriter(layout);
    for (StreamRow const& row : rows) {
        writer.write(row);
    }
    writer.finish();
    if (rows.empty()) {
        noteNoStreams(run, index, criteria, options.common.jobs);
    } else {
        noteUnread(run, index);
    }
    run.writeSummary(streamsSummary(rows, run.captures().size()));
    return run.finish();
}

}  // namespace TalIec61850Tools
