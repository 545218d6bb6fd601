#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/options/CommonOptions.hpp"
#include "tools/options/FollowOptions.hpp"
#include "tools/options/WindowOptions.hpp"
#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// Which packets a command reads: those of which streams, in which window.
struct PacketOptions {
    CommonOptions common;
    PacketCriteria criteria;
    WindowOptions window;
    /// With the packets next to the window, of each GOOSE stream in each file.
    bool withContext = false;
    /// The most packets to write.
    std::optional<std::uint64_t> limit;
    /// A capture to write the frames into, in place of rows; empty for rows.
    std::string captureFile;
    FollowOptions follow;

    /// Whether any option selects packets.
    [[nodiscard]] bool areSelecting() const {
        return criteria != PacketCriteria() || !window.isEmpty() || withContext || limit;
    }
};

/// Adds the options that select packets, without those of addCommonOptions.
/// @param options  written while the command line is parsed
void addPacketOptions(CommandDefinition& command, PacketOptions& options);

}  // namespace TalIec61850Tools
