#include "tools/commands/ShowCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <memory>
#include <utility>

#include "tools/commands/PacketLocator.hpp"
#include "tools/commands/UsageError.hpp"
#include "tools/input/PacketFrames.hpp"
#include "tools/inspect/PacketJson.hpp"
#include "tools/inspect/PacketText.hpp"
#include "tools/output/Style.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/selection/StreamFields.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kNotes =
    R"(Shows packets whole, as they stand in the file: all counters at their full width, time stamps with
fraction and quality, data values typed and nested, qualities by name, each ASDU with its samples.
What a frame does not hold whole is said in its faults; octets that make no value are shown as they
are.

WHAT is either packets by their places, FILE@POSITION as `tal-iec61850 packets` lists them, or files,
folders or -, of which the options select packets as they do there.

The fields of json and csv: time, timeNs (nanoseconds since 1970), file, position, place,
recordPosition, capturedOctets, wireOctets, protocol, goose, sv. The last two hold the packet, one
of them is null; csv has it as JSON in one cell.
)";

/// A packet and the frame that it came in.
struct ShownPacket {
    PacketRow row;
    CaptureRecord record;
    std::optional<GoosePacket> goose;
    std::optional<SvPacket> sv;
};

Fields toFields(ShownPacket const& packet) {
    Fields fields;
    addPacketFields(packet.row, fields);
    fields["recordPosition"] = packet.record.position;
    fields["capturedOctets"] = packet.record.capturedSize;
    fields["wireOctets"] = packet.record.originalSize;
    fields["protocol"] = toText(packet.row.stream.protocol);
    fields["goose"] = packet.goose ? toJson(*packet.goose) : Fields(nullptr);
    fields["sv"] = packet.sv ? toJson(*packet.sv) : Fields(nullptr);
    return fields;
}

std::string titleOf(ShownPacket const& packet) {
    return fmt::format("{} {} {}@{}{}", toUtcText(packet.row.time),
                       toText(packet.row.stream.protocol), escapeText(packet.row.file),
                       packet.row.position,
                       packet.row.place == Place::inside
                           ? std::string()
                           : fmt::format(" ({} the window)", toText(packet.row.place)));
}

std::string recordLineOf(CaptureRecord const& record) {
    return fmt::format("record at {}: {} of {} octets captured\n", record.position,
                       record.capturedSize, record.originalSize);
}

/// Writes packets, in whichever format was asked for.
class PacketWriter {
public:
    PacketWriter(CommandRun& run, Format format) : sink_(run.sink()), inColour_(run.inColour()) {
        if (format != Format::table) {
            rows_.emplace(
                run.rowWriter(RowLayout<ShownPacket>{.toFields = toFields, .columns = {}}));
        }
    }

    void write(ShownPacket const& packet) {
        if (rows_) {
            rows_->write(packet);
            return;
        }
        sink_(std::exchange(isFirst_, false) ? "" : "\n");
        sink_(emphasise(titleOf(packet), inColour_) + "\n");
        sink_(recordLineOf(packet.record));
        sink_(packet.goose ? toText(*packet.goose) : toText(*packet.sv));
    }

private:
    TextSink sink_;
    bool inColour_;
    bool isFirst_ = true;
    std::optional<RowWriter<ShownPacket>> rows_;
};

/// The frames of each capture that the selection has packets in.
class SelectedFrames {
public:
    SelectedFrames(CommandRun& run, PacketSelection const& selection) {
        std::map<std::uint32_t, std::vector<std::uint64_t>> positions;
        for (SelectedPacket const& packet : selection.packets) {
            positions[packet.capture].push_back(packet.package->position);
        }
        for (auto& [capture, wanted] : positions) {
            frames_.try_emplace(capture, run.captures()[capture].path, std::move(wanted));
        }
    }

    /// @return none where the file is not what was indexed any more
    std::optional<ShownPacket> read(SelectedPacket const& packet, PacketRow row) {
        PacketFrames& frames = frames_.at(packet.capture);
        auto const record = frames.recordAt(row.position);
        if (!record) {
            return std::nullopt;
        }
        auto const frame = frames.frameOf(*record);
        auto const offset = static_cast<std::size_t>(row.position - record->framePosition());
        ShownPacket shown{.row = std::move(row), .record = *record, .goose = {}, .sv = {}};
        if (shown.row.stream.protocol == Protocol::goose) {
            shown.goose = inspectGoose(frame, offset);
        } else {
            shown.sv = inspectSv(frame, offset);
        }
        return shown;
    }

private:
    std::map<std::uint32_t, PacketFrames> frames_;
};

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
        } else if (std::filesystem::is_directory(locator.file)) {
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

void addShowCommand(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<PacketOptions>();
    CLI::App& command = *program.add_subcommand("show", "Show packets in full.");
    addCommonOptions(command, options->common,
                     "Packets as FILE@POSITION, or captures, folders of captures, - for standard "
                     "input");
    addPacketOptions(command, *options);
    command.footer(makeHelpFooter(
        kNotes,
        {"show bay1.pcap@4711", "show --gocbref '*gcbTrip' --from +10s --to +10.5s bay1.pcap",
         "show --format json --svid MU01 bay1.pcap | jq .sv.asdus"}));
    command.callback([options, &chosen] { chosen = [options] { return runShow(*options); }; });
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
    CaptureIndex const index = run.index(toIndexFilter(options.criteria));
    PacketSelection selection = selectWanted(index, options);
    if (!locators.empty()) {
        keepLocated(selection, locators, run);
    }
    SelectedFrames frames(run, selection);
    PacketWriter writer(run, common.format);
    for (SelectedPacket const& packet : selection.packets) {
        PacketRow row = toRow(packet, selection, run);
        std::string const file = row.file;
        if (auto const shown = frames.read(packet, std::move(row))) {
            writer.write(*shown);
        } else {
            run.complainOf(file, "has changed while it was read");
        }
    }
    return run.finish();
}

}  // namespace TalIec61850Tools
