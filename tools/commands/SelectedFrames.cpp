#include "tools/commands/SelectedFrames.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

namespace TalIec61850Tools {

SelectedFrames::SelectedFrames(std::vector<CaptureSource> const& captures,
                               PacketSelection const& selection)
    : captures_(captures) {
    for (SelectedPacket const& packet : selection.packets) {
        positions_[packet.capture].push_back(packet.package->position);
    }
}

SelectedFrame SelectedFrames::read(SelectedPacket const& packet) {
    PacketFrames const& frames = framesOf(packet.capture);
    std::uint64_t const position = packet.package->position;
    auto const record = frames.recordAt(position);
    if (!record) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    return {.record = *record,
            .octets = frames.frameOf(*record),
            .pduIndex = static_cast<std::size_t>(position - record->framePosition())};
}

PacketFrames const& SelectedFrames::framesOf(std::uint32_t capture) {
    auto const found = frames_.find(capture);
    if (found != frames_.end()) {
        return found->second;
    }
    return frames_
        .try_emplace(capture, captures_[capture].path, std::exchange(positions_[capture], {}))
        .first->second;
}

}  // namespace TalIec61850Tools
