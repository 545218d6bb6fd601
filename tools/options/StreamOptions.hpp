#pragma once

#include "tools/options/CommandDefinition.hpp"
#include "tools/selection/PacketCriteria.hpp"
#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// What a help says about the options on streams: a paragraph, not broken into lines.
inline constexpr char const* kCriteriaNotes =
    "An option on streams may be given several times, save --protocol and those that take yes or "
    "no: one of its values must be met. With --hsr, --prp and --lan, packets that came over the "
    "other lane or LAN are left out.";

/// The same for commands without options on the way that packets came.
inline constexpr char const* kContentNotes =
    "An option on streams may be given several times, save --protocol: one of its values must be "
    "met.";

/// Adds the options on what a stream is, whatever way its packets came.
/// @param criteria  written while the command line is parsed
void addContentOptions(CommandDefinition& command, StreamCriteria& criteria);

/// Adds the options on what the description of a stream says: those, without the source address.
/// @param criteria  written while the command line is parsed
void addDescribedOptions(CommandDefinition& command, StreamCriteria& criteria);

/// Adds those of addContentOptions, and the options on the lane or LAN of a stream's packets.
/// @param criteria  written while the command line is parsed
void addStreamOptions(CommandDefinition& command, StreamCriteria& criteria);

/// Adds those, and the options on what each packet says of the way that it came and of simulation.
/// @param criteria  written while the command line is parsed
void addWireOptions(CommandDefinition& command, PacketCriteria& criteria);

/// Adds the options on counters.
/// @param criteria  written while the command line is parsed
void addCounterOptions(CommandDefinition& command, PacketCriteria& criteria);

}  // namespace TalIec61850Tools
