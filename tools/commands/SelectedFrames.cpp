#include "tools/commands/SelectedFrames.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

namespace TalIec61850Tools {

using TalIec61850Analysis::PacketFrames;

SelectedFrames::SelectedFrames(std::vector<CaptureSource> const& captures,
                               PacketSelection const& selection)
    : captures_(captures) {
    for (SelectedPacket const& packet : selection.packets) {
        positions_[packet.capture].push_back(packet.package->position);
    }
}

SelectedFrame SelectedFrames::read(SelectedPacket const& packet) {
    PacketFrames& frames = framesOf(packet.capture);
    std::uint64_t const position = packet.package->position;
    auto const record = frames.recordAt(position);
    if (!record) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    return {.record = *record,
            .octets = frames.frameOf(*record),
            .pduIndex = static_cast<std::size_t>(position - record->frameOffset)};
}

PacketFrames& SelectedFrames::framesOf(std::uint32_t capture) {
    auto found = frames_.find(capture);
    if (found == frames_.end()) {
        found = frames_
                    .try_emplace(capture, captures_[capture].path,
                                 std::exchange(positions_[capture], {}))
                    .first;
    }
    if (open_ != nullptr && open_ != &found->second) {
        open_->close();
    }
    open_ = &found->second;
    return *open_;
}

}  // namespace TalIec61850Tools
