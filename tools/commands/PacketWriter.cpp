#include "tools/commands/PacketWriter.hpp"

#include <fmt/format.h>

#include <utility>

#include "tools/output/Style.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/PacketJson.hpp"
#include "tools/render/PacketText.hpp"
#include "tools/selection/StreamFields.hpp"

namespace TalIec61850Tools {

namespace {

Fields toFields(ShownPacket const& packet) {
    Fields fields;
    addPacketFields(packet.row, fields);
    fields["recordPosition"] = packet.record.fileOffset;
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

std::string recordLineOf(TalIec61850Analysis::CaptureRecord const& record) {
    return fmt::format("record at {}: {} of {} octets captured\n", record.fileOffset,
                       record.capturedSize, record.originalSize);
}

}  // namespace

PacketWriter::PacketWriter(CommandRun& run, Format format)
    : sink_(run.sink()), inColour_(run.inColour()) {
    if (format != Format::table) {
        rows_.emplace(run.rowWriter(RowLayout<ShownPacket>{.toFields = toFields, .columns = {}}));
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
    sink_(packet.goose ? toText(*packet.goose) : toText(*packet.sv));
}

}  // namespace TalIec61850Tools
