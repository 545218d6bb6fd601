#include "tools/commands/ShownPackets.hpp"

#include <system_error>

#include "tools/commands/WantedPackets.hpp"

namespace TalIec61850Tools {

ShownPackets::ShownPackets(CommandRun& run, PacketSelection const& selection, ProgressBar& bar)
    : run_(run), selection_(selection), bar_(bar), frames_(run.captures(), selection) {}

std::optional<ShownPacket> ShownPackets::read(SelectedPacket const& packet) {
    if (lost_.contains(packet.capture)) {
        return std::nullopt;
    }
    try {
        return decode(packet);
    } catch (std::system_error const& error) {
        lost_.insert(packet.capture);
        bar_.erase();
        run_.complainOf(run_.captures()[packet.capture].name, error.code().message());
        return std::nullopt;
    }
}

ShownPacket ShownPackets::decode(SelectedPacket const& packet) {
    SelectedFrame const frame = frames_.read(packet);
    ShownPacket shown{
        .row = rowOf(packet, selection_, run_), .record = frame.record, .goose = {}, .sv = {}};
    if (shown.row.stream->protocol == Protocol::goose) {
        shown.goose = TalIec61850Analysis::decodeGoose(frame.octets, frame.pduIndex);
    } else {
        shown.sv = TalIec61850Analysis::decodeSv(frame.octets, frame.pduIndex);
    }
    return shown;
}

}  // namespace TalIec61850Tools
