#pragma once

#include <TalIec61850Analysis/file/PacketFrames.hpp>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/PacketWriter.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {

/// Reads selected packets again from their captures.
class SelectedFrames {
public:
    /// @param run, selection  must outlive this
    SelectedFrames(CommandRun& run, PacketSelection const& selection);

    /// @param packet  one of the selection
    /// @return none where the capture cannot be read any more, or is not what was indexed; that is
    ///         complained of once for each capture
    [[nodiscard]] std::optional<ShownPacket> read(SelectedPacket const& packet);

private:
    [[nodiscard]] TalIec61850Analysis::PacketFrames& framesOf(std::uint32_t capture);
    [[nodiscard]] ShownPacket readFrom(TalIec61850Analysis::PacketFrames& frames,
                                       SelectedPacket const& packet);

    CommandRun& run_;
    PacketSelection const& selection_;
    /// The selected positions in each capture, until its records have been walked.
    std::map<std::uint32_t, std::vector<std::uint64_t>> positions_;
    std::map<std::uint32_t, TalIec61850Analysis::PacketFrames> frames_;
    /// The one of them that may be open: there may be more captures than files can be.
    TalIec61850Analysis::PacketFrames* open_ = nullptr;
    std::set<std::uint32_t> lost_;
};

}  // namespace TalIec61850Tools
