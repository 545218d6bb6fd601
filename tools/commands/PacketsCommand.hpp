#pragma once

#include "tools/commands/Action.hpp"
#include "tools/commands/CommandRun.hpp"
#include "tools/commands/CommonOptions.hpp"
#include "tools/commands/SelectionOptions.hpp"
#include "tools/selection/PacketLayout.hpp"

namespace TalIec61850Tools {

/// Which packets a command is about: those of which streams, in which window.
struct PacketOptions {
    CommonOptions common;
    StreamCriteria criteria;
    WindowOptions window;
    bool withContext = false;
};

/// Adds the options that select packets; those of addCommonOptions are not among them.
void addPacketOptions(CLI::App& command, PacketOptions& options);

/// Selects what the options ask for.
/// @param index  must outlive the selection
[[nodiscard]] PacketSelection selectWanted(CaptureIndex const& index, PacketOptions const& options);

/// What is told of a selected packet.
[[nodiscard]] PacketRow toRow(SelectedPacket const& packet, PacketSelection const& selection,
                              CommandRun const& run);

/// The last line for people: how many packets, of how many streams.
[[nodiscard]] std::string summaryOf(PacketSelection const& selection, std::size_t captures);

/// Adds the subcommand to the program.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addPacketsCommand(CLI::App& program, Action& chosen);

/// Indexes the captures and writes one row per wanted packet, in time order, then a summary.
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runPackets(PacketOptions const& options);

}  // namespace TalIec61850Tools
