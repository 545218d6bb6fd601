#include "tools/commands/ShowCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
#include <utility>

#include "tools/commands/NothingFoundNote.hpp"
#include "tools/commands/PacketWriter.hpp"
#include "tools/commands/ShownPackets.hpp"
#include "tools/commands/WantedPackets.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/PacketLocator.hpp"
#include "tools/options/SelectionOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools {

namespace {

std::string showNotes() {
    auto const fields =
        listFields(fieldNames(shownPacketLayout()), {{"timeNs", "nanoseconds since 1970"}});
    return paragraph(
               "Shows packets whole, as they are in the file: all counters at their full width, "
               "time stamps with fraction and quality, data values typed and nested, qualities by "
               "name, each ASDU with its samples. What a frame does not hold whole is said in its "
               "faults; octets that make no value are shown as they are.") +
           "\n" +
           paragraph(
               "FILE is either a packet by its place, FILE@POSITION as `tal-iec61850 packets` "
               "lists it, or a file, a folder or -, of which the options select packets as they "
               "do there; one kind or the other for all.") +
           "\n" + kTimeNotes + "\n" +
           paragraph("The fields of json and csv: " + fields +
                     ". The last two hold the packet, one of them is null; csv has it as JSON in "
                     "one cell.");
}

std::vector<PacketLocator> locatorsIn(std::vector<std::string> const& arguments) {
    std::vector<PacketLocator> locators;
    for (auto const& argument : arguments) {
        if (auto locator = parsePacketLocator(argument)) {
            locators.push_back(std::move(*locator));
        }
    }
    if (!locators.empty() && locators.size() != arguments.size()) {
        throw UsageError("give either FILE@POSITION or files, not both");
    }
    return locators;
}

/// Leaves only the packets that are named, and complains of names without a packet.
void keepLocated(PacketSelection& selection, std::vector<PacketLocator> const& locators,
                 CommandRun& run) {
    using Spot = std::pair<std::size_t, std::uint64_t>;
    std::map<Spot, PacketLocator> wanted;
    for (auto const& locator : locators) {
        if (auto const capture = run.captureCalled(locator.file)) {
            wanted.emplace(Spot(*capture, locator.position), locator);
        } else if (std::error_code ignored; std::filesystem::is_directory(locator.file, ignored)) {
            run.complainOf(locator.file, "a folder holds no packets itself");
        }
    }
    auto missing = wanted;
    std::erase_if(selection.packets, [&](SelectedPacket const& packet) {
        Spot const spot(packet.capture, packet.package->position);
        missing.erase(spot);
        return !wanted.contains(spot);
    });
    for (auto const& [spot, locator] : missing) {
        run.complainOf(locator.file, fmt::format("no such packet at {}, see tal-iec61850 packets",
                                                 locator.position));
    }
}

}  // namespace

void addShowCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<PacketOptions>();
    CommandDefinition& command = addCommand(program, "show", "Show packets in full.");
    addCommonOptions(command, options->common,
                     "Packets as FILE@POSITION, or captures, folders of captures, - for standard "
                     "input");
    addPacketOptions(command, *options);
    command.notes = showNotes();
    command.examples = {"tal-iec61850 show bay1.pcap@4711",
                        "tal-iec61850 show --gocbref '*gcbTrip' --from +10s --to +10.5s bay1.pcap",
                        "tal-iec61850 show --format json --svid MU01 bay1.pcap | jq .sv.asdus"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runShow(*options); }; });
}

ExitStatus runShow(PacketOptions const& options) {
    options.window.check();
    auto const locators = locatorsIn(options.common.files);
    CommonOptions common = options.common;
    if (!locators.empty()) {
        common.files.clear();
        for (auto const& locator : locators) {
            common.files.push_back(locator.file);
        }
    }
    CommandRun run(common);
    PacketWriter writer(run, common.format, common.columns);
    CaptureIndex const index = run.index(toIndexFilter(options.criteria));
    PacketSelection selection = selectWanted(index, options);
    if (!locators.empty()) {
        keepLocated(selection, locators, run);
    }
    limitPackets(selection, options.limit);
    ProgressBar bar = run.writingBar(selection.packets.size());
    bar.startFile("writing", selection.packets.size());
    ShownPackets packets(run, selection, bar);
    for (SelectedPacket const& packet : selection.packets) {
        bar.countOne();
        if (auto const shown = packets.read(packet)) {
            writer.write(*shown);
        }
    }
    writer.finish();
    bar.erase();
    if (locators.empty() && selection.packets.empty() && options.limit != 0) {
        noteNoPackets(run, index, options, selection);
    }
    if (locators.empty()) {
        run.writeSummary(summaryOf(selection, run.captures().size()));
    }
    return run.finish();
}

}  // namespace TalIec61850Tools
