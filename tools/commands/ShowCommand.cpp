#include "tools/commands/ShowCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
#include <utility>

#include "tools/commands/NamesOfRun.hpp"
#include "tools/commands/PacketWriter.hpp"
#include "tools/commands/ShownLayouts.hpp"
#include "tools/commands/ShownPacket.hpp"
#include "tools/commands/WantedPackets.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/PacketLocator.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureFile;
using TalIec61850Analysis::CaptureRecord;

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
               "FILE is either a packet by its place, FILE@POSITION: that of the PDU as "
               "`tal-iec61850 packets` lists it, of the frame, of the record, or of any octet in "
               "it; or a file, a folder or -, of which the options select packets as they do "
               "there. It is one kind or the other for all.") +
           "\n" +
           paragraph(std::string(kNameNotes) +
                     " Values have a name then; samples are read as they are described, with "
                     "their unit and scale.") +
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

/// Why there is no packet to show at a place.
std::string whyNoPacket(std::optional<CaptureRecord> const& record, std::uint64_t position) {
    if (!record) {
        return fmt::format("no such packet at {}, see tal-iec61850 packets", position);
    }
    return fmt::format("the frame at {} is neither GOOSE nor SV", record->frameOffset);
}

/// Reads the packets that are named, by seeking; reports names without a packet.
class LocatedPackets {
public:
    LocatedPackets(CommandRun& run, StreamNames& names) : run_(run), names_(names) {}

    void find(PacketLocator const& locator) {
        auto const capture = run_.captureCalled(locator.file);
        if (!capture) {
            if (std::error_code ignored; std::filesystem::is_directory(locator.file, ignored)) {
                run_.complainOf(locator.file, "a folder holds no packets itself");
            }
            return;
        }
        try {
            findIn(*capture, locator);
        } catch (std::system_error const& error) {
            run_.complainOf(locator.file, faultText(error.code()));
        }
    }

    /// In the order of their times, then of files and positions; each once.
    [[nodiscard]] std::vector<ShownPacket> take() {
        std::vector<ShownPacket> packets;
        for (auto& [place, packet] : found_) {
            packets.push_back(std::move(packet));
        }
        std::stable_sort(packets.begin(), packets.end(),
                         [](ShownPacket const& a, ShownPacket const& b) {
                             return a.record.time < b.record.time;
                         });
        return packets;
    }

private:
    void findIn(std::size_t capture, PacketLocator const& locator) {
        CaptureSource const& source = run_.captures()[capture];
        if (!open_ || openNumber_ != capture) {
            open_.emplace(source.path);
            openNumber_ = capture;
        }
        auto const record = open_->recordAt(locator.position);
        auto shown = record ? showFrame({*record, open_->frameOf(*record)}, source.name, names_)
                            : std::nullopt;
        if (shown && shown->sv) {
            shown->layouts = layoutsNear(*open_, *record, *shown->sv);
            describeAsdus(*shown, names_);
        }
        if (shown) {
            found_.try_emplace({capture, record->fileOffset}, std::move(*shown));
        } else {
            run_.complainOf(locator.file, whyNoPacket(record, locator.position));
        }
    }

    CommandRun& run_;
    StreamNames& names_;
    std::optional<CaptureFile> open_;
    std::size_t openNumber_ = 0;
    std::map<std::pair<std::size_t, std::uint64_t>, ShownPacket> found_;
};

/// Shows the packets that are named.
ExitStatus showLocated(PacketOptions const& options, std::vector<PacketLocator> const& locators) {
    if (options.areSelecting()) {
        throw UsageError(
            "FILE@POSITION is a packet already; options that select do not go with it");
    }
    CommonOptions common = options.common;
    common.files.clear();
    for (auto const& locator : locators) {
        common.files.push_back(locator.file);
    }
    CommandRun run(common);
    NamesOfRun names(run, common);
    PacketWriter writer(run, common.format, common.columns);
    LocatedPackets packets(run, names);
    for (auto const& locator : locators) {
        packets.find(locator);
    }
    for (ShownPacket const& packet : packets.take()) {
        writer.write(packet);
    }
    writer.finish();
    return run.finish();
}

/// Shows the packets that the options select.
ExitStatus showSelected(PacketOptions const& options) {
    CommandRun run(options.common);
    PacketWriter writer(run, options.common.format, options.common.columns);
    NamesOfRun names(run, options.common);
    WantedPackets packets(run, options, names, WantedPackets::Unit::frames);
    IndexedLayouts layouts(packets.index());
    packets.visit([&](PacketRow const& row) {
        if (auto shown = showFrame(row.record(), row.file(), names)) {
            shown->place = row.packet().place;
            if (shown->sv && !row.isUnread()) {
                shown->layouts = layouts.of(*shown->sv, *row.key());
                describeAsdus(*shown, names);
            }
            writer.write(*shown);
        }
    });
    writer.finish();
    packets.noteIfNone();
    run.writeSummary(packets.summary());
    return run.finish();
}

}  // namespace

void addShowCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<PacketOptions>();
    CommandDefinition& command = addCommand(program, "show", "Show packets in full.");
    addCommonOptions(command, options->common,
                     "Packets as FILE@POSITION, or captures, folders of captures, - for standard "
                     "input");
    addPacketOptions(command, *options);
    addNameOptions(command, options->common, options->criteria);
    command.notes = showNotes();
    command.examples = {"tal-iec61850 show bay1.pcap@4711",
                        "tal-iec61850 show --goid '*Trip' --around 10:00:00.28 --span 500ms a.pcap",
                        "tal-iec61850 show --format json --svid MU01 bay1.pcap | jq .sv.asdus"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runShow(*options); }; });
}

ExitStatus runShow(PacketOptions const& options) {
    options.window.check();
    checkNameOptions(options.common, options.criteria);
    auto const locators = locatorsIn(options.common.files);
    return locators.empty() ? showSelected(options) : showLocated(options, locators);
}

}  // namespace TalIec61850Tools
