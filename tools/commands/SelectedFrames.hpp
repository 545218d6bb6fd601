#pragma once

#include <TalIec61850Analysis/file/PacketFrames.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "tools/input/CaptureFinder.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {

/// The frame of a selected packet.
struct SelectedFrame {
    TalIec61850Analysis::CaptureRecord record;
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
    [[nodiscard]] TalIec61850Analysis::PacketFrames& framesOf(std::uint32_t capture);

    std::vector<CaptureSource> const& captures_;
    /// The selected positions in each capture, until its records have been walked.
    std::map<std::uint32_t, std::vector<std::uint64_t>> positions_;
    std::map<std::uint32_t, TalIec61850Analysis::PacketFrames> frames_;
    /// The only one of them that may be open: there may be more captures than descriptors.
    TalIec61850Analysis::PacketFrames* open_ = nullptr;
};

}  // namespace TalIec61850Tools
