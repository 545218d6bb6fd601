#include "tools/commands/PacketsCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "tools/commands/FollowPackets.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/commands/WantedPackets.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/CaptureWriter.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools {

namespace {

std::string packetsNotes() {
    StreamNames noNames(std::nullopt, {});
    auto const fields = listFields(fieldNames(packetLayout(true, &noNames)),
                                   {{"timeNs", "nanoseconds since 1970"},
                                    {"position", "of the PDU, in octets"},
                                    {"asdu", "its number in the frame"},
                                    {"timeAllowedToLive", "milliseconds"},
                                    {"place", "inside; with --context also before and after"},
                                    {"unreadable", "why a frame is of no stream"},
                                    {"controlBlock", "as ied, with --scl alone"}});
    return paragraph(
               "Packets come in the order of their capture times, over all files; of one time, in "
               "the order in which the files were given. A frame of several ASDUs is one row for "
               "each. Frames that are GOOSE or SV by their EtherType but of no stream, as they "
               "cannot be read, are rows too. A packet that two files have comes once. "
               "FILE@POSITION is what `tal-iec61850 show` takes.") +
           "\n" + paragraph(kFollowNotes) + "\n" + kTimeNotes + "\n" + paragraph(kCriteriaNotes) +
           "\n" + paragraph(kNameNotes) + "\n" +
           paragraph("The fields of json and csv: " + fields + ".");
}

/// Writes a row for each wanted packet.
ExitStatus listPackets(PacketOptions const& options) {
    auto const layout = [&options](StreamNames& names) {
        bool const areDescribed = !options.common.descriptions.empty();
        return chooseColumns(packetLayout(options.withContext, areDescribed ? &names : nullptr),
                             options.common.columns);
    };
    // Names of columns are wrong before captures are read.
    StreamNames noNames(std::nullopt, {});
    static_cast<void>(layout(noNames));
    CommandRun run(options.common);
    NamesOfRun names(run, options.common);
    WantedPackets packets(run, options, names, WantedPackets::Unit::packets);
    auto writer = run.rowWriter(layout(names));
    packets.visit([&](PacketRow const& row) { writer.write(row); });
    writer.finish();
    packets.noteIfNone();
    run.writeSummary(packets.summary());
    return run.finish();
}

/// Writes the frames of the wanted packets into a capture.
ExitStatus writeCapture(PacketOptions const& options) {
    if (!options.common.outputFile.empty() || !options.common.columns.empty() ||
        options.common.format != Format::table) {
        throw UsageError("-w writes a capture; -o, --format and --columns do not go with it");
    }
    CommonOptions common = options.common;
    common.outputFile = options.captureFile == "-" ? "" : options.captureFile;
    CommandRun run(common);
    NamesOfRun names(run, common);
    WantedPackets packets(run, options, names, WantedPackets::Unit::frames);
    CaptureWriter writer(run.sink());
    std::uint64_t others = 0;
    packets.visit([&](PacketRow const& row) { others += writer.write(row.record()) ? 0 : 1; });
    writer.finish();
    packets.noteIfNone();
    if (others != 0) {
        run.complainOf(options.captureFile,
                       fmt::format("{} left out, not of link type {} as the first",
                                   plural(others, "frame"), *writer.linkType()));
    }
    if (writer.withoutTime() != 0) {
        complain(fmt::format("{}: {} without a time, written as of 1970-01-01",
                             escapeText(options.captureFile),
                             plural(writer.withoutTime(), "frame")));
    }
    return run.finish();
}

}  // namespace

void addPacketsCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<PacketOptions>();
    CommandDefinition& command = addCommand(
        program, "packets", "List the packets of streams in a window of time, across captures.");
    addCommonOptions(command, options->common);
    addPacketOptions(command, *options);
    command.parser
        ->add_option("-w,--write", options->captureFile,
                     "Write the frames into FILE, a capture with nanoseconds, in place of rows")
        ->option_text("FILE");
    addFollowOptions(command, options->follow);
    addNameOptions(command, options->common, options->criteria);
    command.notes = packetsNotes();
    command.examples = {"tal-iec61850 packets --gocbref '*gcbTrip' --from +10s --context bay1.pcap",
                        "tal-iec61850 packets --svid MU01 --from 10:00:00 -f csv captures/",
                        "tal-iec61850 packets --appid 4001 --from -5s -w last.pcap bay1.pcap",
                        "tal-iec61850 packets -F --gocbref '*gcbTrip' ring/"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runPackets(*options); }; });
}

ExitStatus runPackets(PacketOptions const& options) {
    options.window.check();
    options.follow.check(options.common);
    checkNameOptions(options.common, options.criteria);
    if (options.follow.isOn) {
        return followPackets(options);
    }
    return options.captureFile.empty() ? listPackets(options) : writeCapture(options);
}

}  // namespace TalIec61850Tools
