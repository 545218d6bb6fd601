#include "tools/commands/PacketWriter.hpp"

#include <fmt/format.h>

#include <utility>

#include "tools/options/ChosenColumns.hpp"
#include "tools/output/Style.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/Cells.hpp"
#include "tools/render/PacketLayout.hpp"
#include "tools/render/PacketText.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

std::string titleOf(ShownPacket const& packet) {
    return fmt::format(
        "{} {} {}@{}{}", packet.record.time ? toUtcText(*packet.record.time) : "without a time",
        toText(packet.protocol()), escapeText(packet.file),
        packet.position.value_or(packet.record.frameOffset),
        packet.place == Place::inside ? std::string()
                                      : fmt::format(" ({} the window)", toText(packet.place)));
}

std::string recordLineOf(TalIec61850Analysis::CaptureRecord const& record) {
    return fmt::format("record at {}: {} of {} octets captured\n", record.fileOffset,
                       record.capturedSize, record.originalSize);
}

}  // namespace

PacketWriter::PacketWriter(CommandRun& run, Format format, std::vector<std::string> const& columns)
    : sink_(run.sink()), inColour_(run.inColour()) {
    if (format != Format::table || !columns.empty()) {
        rows_.emplace(run.rowWriter(chooseColumns(shownPacketLayout(), columns)));
    }
}

void PacketWriter::finish() {
    if (rows_) {
        rows_->finish();
    }
}

void PacketWriter::write(ShownPacket const& packet) {
    if (rows_) {
        rows_->write(packet);
        return;
    }
    sink_(std::exchange(isFirst_, false) ? "" : "\n");
    sink_(emphasise(titleOf(packet), inColour_) + "\n");
    sink_(recordLineOf(packet.record));
    sink_(packet.goose ? toText(*packet.goose, packet.names)
                       : toText(*packet.sv, packet.layouts, packet.meanings));
}

}  // namespace TalIec61850Tools
