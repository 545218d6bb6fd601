#include "tools/commands/PacketsCommand.hpp"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "tools/commands/NothingFoundNote.hpp"
#include "tools/commands/WantedPackets.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/SelectionOptions.hpp"
#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools {

namespace {

std::string packetsNotes() {
    auto const fields = listFields(fieldNames(packetLayout(true)),
                                   {{"timeNs", "nanoseconds since 1970"},
                                    {"position", "octets"},
                                    {"place", "inside; with --context also before and after"}});
    return paragraph(
               "Packets come in the order of their capture times, over all files; of one time, in "
               "the order in which the files were given. FILE@POSITION is what `tal-iec61850 "
               "show` takes.") +
           "\n" + kTimeNotes + "\n" + paragraph(kCriteriaNotes) + "\n" +
           paragraph("The fields of json and csv: " + fields +
                     ". What follows protocol is the stream's, as `streams` lists it.");
}

}  // namespace

void addPacketsCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<PacketOptions>();
    CommandDefinition& command = addCommand(
        program, "packets", "List the packets of streams in a window of time, across captures.");
    addCommonOptions(command, options->common);
    addPacketOptions(command, *options);
    command.notes = packetsNotes();
    command.examples = {"tal-iec61850 packets --gocbref '*gcbTrip' --from +10s --context bay1.pcap",
                        "tal-iec61850 packets --svid MU01 --from 10:00:00 -f csv captures/"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runPackets(*options); }; });
}

ExitStatus runPackets(PacketOptions const& options) {
    options.window.check();
    auto const layout = chooseColumns(packetLayout(options.withContext), options.common.columns);
    CommandRun run(options.common);
    CaptureIndex const index = run.index(toIndexFilter(options.criteria));
    PacketSelection selection = selectWanted(index, options);
    limitPackets(selection, options.limit);
    auto writer = run.rowWriter(layout);
    ProgressBar bar = run.writingBar(selection.packets.size());
    bar.startFile("writing", selection.packets.size());
    for (SelectedPacket const& packet : selection.packets) {
        bar.countOne();
        writer.write(rowOf(packet, selection, run));
    }
    writer.finish();
    bar.erase();
    if (selection.packets.empty() && options.limit != 0) {
        noteNoPackets(run, index, options, selection);
    }
    run.writeSummary(summaryOf(selection, run.captures().size()));
    return run.finish();
}

}  // namespace TalIec61850Tools
