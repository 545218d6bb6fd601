#include "tools/commands/PacketsCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <set>

#include "tools/output/Plural.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kNotes =
    R"(Packets come in the order of their capture times, over all files; of one time, in the order in
which the files were given. FILE@POSITION is what `tal-iec61850 show` takes.

TIME for --from and --to is one of: 2024-03-20T10:00:00.28 (UTC; without the decimals, the
seconds, or the time of day if you like), 1710928800.28 (seconds since 1970, up to nine decimals), +1.5s (from the earliest first record
of the captures; ns, us, ms, s, min, h). Both ends lie inside the window.

An option on streams may be given several times, save --protocol and --simulation-element: one of
its values must be met. With --hsr and --prp, packets that came over the other lane or network are
left out.

The fields of json and csv: time, timeNs (nanoseconds since 1970), file, position (octets),
place (inside; with --context also before and after), protocol, source, destination, vlanId,
appId, hsrLane, prpLane, reserved1Bit0, svID, gocbRef, datSet, goID, confRev,
simulationPresent. What follows protocol is the stream's, as `streams` lists it.
)";

}  // namespace

void addPacketOptions(CLI::App& command, PacketOptions& options) {
    addWindowOptions(command, options.window);
    command
        .add_flag("-c,--context", options.withContext,
                  "Add, of each GOOSE stream in each file, the last packet before the window and "
                  "the first behind it")
        ->group("Which time");
    addCriteriaOptions(command, options.criteria);
}

PacketSelection selectWanted(CaptureIndex const& index, PacketOptions const& options) {
    PacketWish const wish{.criteria = options.criteria,
                          .window = options.window.resolve(index.begin.value_or(CaptureTime())),
                          .withContext = options.withContext};
    return selectPackets(index.db, index.numbers, wish);
}

PacketRow toRow(SelectedPacket const& packet, PacketSelection const& selection,
                CommandRun const& run) {
    return {.stream = selection.streams[packet.stream],
            .time = toCaptureTime(packet.package->time),
            .file = run.captures()[packet.capture].name,
            .position = packet.package->position,
            .place = packet.place};
}

std::string summaryOf(PacketSelection const& selection, std::size_t captures) {
    std::set<std::uint32_t> streams;
    for (SelectedPacket const& packet : selection.packets) {
        streams.insert(packet.stream);
    }
    std::string const unplaced = selection.unplaced == 0
                                     ? std::string()
                                     : fmt::format("; {} without a place in its file left out",
                                                   plural(selection.unplaced, "packet"));
    return fmt::format("{} of {} in {}{}", plural(selection.packets.size(), "packet"),
                       plural(streams.size(), "stream"), plural(captures, "file"), unplaced);
}

void addPacketsCommand(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<PacketOptions>();
    CLI::App& command = *program.add_subcommand(
        "packets", "List the packets of streams in a window of time, across captures.");
    addCommonOptions(command, options->common);
    addPacketOptions(command, *options);
    command.footer(makeHelpFooter(
        kNotes, {"packets --gocbref '*gcbTrip' --from +10s --to +10.5s --context bay1.pcap",
                 "packets --svid MU01 --from 2024-03-20T10:00:00 --format csv captures/"}));
    command.callback([options, &chosen] { chosen = [options] { return runPackets(*options); }; });
}

ExitStatus runPackets(PacketOptions const& options) {
    options.window.check();
    CommandRun run(options.common);
    CaptureIndex const index = run.index(toIndexFilter(options.criteria));
    PacketSelection const selection = selectWanted(index, options);
    auto writer = run.rowWriter(packetLayout(options.withContext));
    for (SelectedPacket const& packet : selection.packets) {
        writer.write(toRow(packet, selection, run));
    }
    writer.finish();
    run.writeSummary(summaryOf(selection, run.captures().size()));
    return run.finish();
}

}  // namespace TalIec61850Tools
