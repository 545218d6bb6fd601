#pragma once

#include <cstdint>
#include <optional>

#include "tools/options/CommonOptions.hpp"
#include "tools/options/SelectionOptions.hpp"

namespace TalIec61850Tools {

/// Which packets a command reads: those of which streams, in which window.
struct PacketOptions {
    CommonOptions common;
    StreamCriteria criteria;
    WindowOptions window;
    /// With the packets next to the window, of each GOOSE stream in each file.
    bool withContext = false;
    /// The most packets to write.
    std::optional<std::uint64_t> limit;
};

/// Adds the options that select packets, without those of addCommonOptions.
/// @param options  written while the command line is parsed
void addPacketOptions(CommandDefinition& command, PacketOptions& options);

}  // namespace TalIec61850Tools
