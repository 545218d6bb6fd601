#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/commands/CommandRun.hpp"
#include "tools/options/PacketOptions.hpp"
#include "tools/render/PacketLayout.hpp"

namespace TalIec61850Tools {

// The packets that PacketOptions select, for the commands that list and show them.

/// Selects what the options ask for.
/// @param index  must outlive the selection
[[nodiscard]] PacketSelection selectWanted(CaptureIndex const& index, PacketOptions const& options);

/// Leaves the first packets alone, where only so many are wanted.
void limitPackets(PacketSelection& selection, std::optional<std::uint64_t> limit);

/// The row of a selected packet.
/// @param packet     one of the selection
/// @param selection  must outlive the row, as the run must
[[nodiscard]] PacketRow rowOf(SelectedPacket const& packet, PacketSelection const& selection,
                              CommandRun const& run);

/// The last line for people: how many packets, of how many streams.
/// @param captures  how many captures were read
[[nodiscard]] std::string summaryOf(PacketSelection const& selection, std::size_t captures);

}  // namespace TalIec61850Tools
