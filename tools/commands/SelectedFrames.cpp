#include "tools/commands/SelectedFrames.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

#include "tools/commands/PacketsCommand.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::PacketFrames;

SelectedFrames::SelectedFrames(CommandRun& run, PacketSelection const& selection)
    : run_(run), selection_(selection) {
    for (SelectedPacket const& packet : selection.packets) {
        positions_[packet.capture].push_back(packet.package->position);
    }
}

std::optional<ShownPacket> SelectedFrames::read(SelectedPacket const& packet) {
    if (lost_.contains(packet.capture)) {
        return std::nullopt;
    }
    try {
        return readFrom(framesOf(packet.capture), packet);
    } catch (std::system_error const& error) {
        lost_.insert(packet.capture);
        run_.complainOf(run_.captures()[packet.capture].name, error.code().message());
        return std::nullopt;
    }
}

PacketFrames& SelectedFrames::framesOf(std::uint32_t capture) {
    auto found = frames_.find(capture);
    if (found == frames_.end()) {
        found = frames_
                    .try_emplace(capture, run_.captures()[capture].path,
                                 std::exchange(positions_[capture], {}))
                    .first;
    }
    if (open_ != nullptr && open_ != &found->second) {
        open_->close();
    }
    open_ = &found->second;
    return *open_;
}

ShownPacket SelectedFrames::readFrom(PacketFrames& frames, SelectedPacket const& packet) {
    std::uint64_t const position = packet.package->position;
    auto const record = frames.recordAt(position);
    if (!record) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    auto const frame = frames.frameOf(*record);
    auto const offset = static_cast<std::size_t>(position - record->frameOffset);
    ShownPacket shown{
        .row = toRow(packet, selection_, run_), .record = *record, .goose = {}, .sv = {}};
    if (shown.row.stream.protocol == Protocol::goose) {
        shown.goose = TalIec61850Analysis::decodeGoose(frame, offset);
    } else {
        shown.sv = TalIec61850Analysis::decodeSv(frame, offset);
    }
    return shown;
}

}  // namespace TalIec61850Tools
