#pragma once

#include <cstdint>
#include <optional>
#include <set>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/SelectedFrames.hpp"
#include "tools/commands/ShownPacketLayout.hpp"

namespace TalIec61850Tools {

/// Decodes selected packets in full.
class ShownPackets {
public:
    /// @param bar  is erased before the run complains
    /// All must outlive this.
    ShownPackets(CommandRun& run, PacketSelection const& selection, ProgressBar& bar);

    /// @param packet  one of the selection
    /// @return none if the capture cannot be read or has changed; the first time for each capture,
    ///         the run complains of it
    [[nodiscard]] std::optional<ShownPacket> read(SelectedPacket const& packet);

private:
    [[nodiscard]] ShownPacket decode(SelectedPacket const& packet);

    CommandRun& run_;
    PacketSelection const& selection_;
    ProgressBar& bar_;
    SelectedFrames frames_;
    /// Captures that the run has complained of.
    std::set<std::uint32_t> lost_;
};

}  // namespace TalIec61850Tools
