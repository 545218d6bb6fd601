#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "tools/input/CaptureFinder.hpp"
#include "tools/input/PacketFrames.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {

/// The frame of a selected packet.
struct SelectedFrame {
    CaptureRecord record;
    /// The captured octets.
    std::vector<std::uint8_t> octets;
    /// Index of the packet's position in the octets.
    std::size_t pduIndex = 0;
};

/// Reads the frames of selected packets from their captures.
class SelectedFrames {
public:
    /// @param captures   those of the selection, by number; must outlive this
    SelectedFrames(std::vector<CaptureSource> const& captures, PacketSelection const& selection);

    /// @param packet  one of the selection
    /// @throws std::system_error  the capture cannot be read, or no longer has the packet (ESTALE)
    [[nodiscard]] SelectedFrame read(SelectedPacket const& packet);

private:
    [[nodiscard]] PacketFrames const& framesOf(std::uint32_t capture);

    std::vector<CaptureSource> const& captures_;
    /// The selected positions in each capture, until its records have been walked.
    std::map<std::uint32_t, std::vector<std::uint64_t>> positions_;
    std::map<std::uint32_t, PacketFrames> frames_;
};

}  // namespace TalIec61850Tools
