#pragma once

#include "tools/library/LibraryCriteria.hpp"
#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// What a help says about the options on streams of the library: a paragraph, not broken into
/// lines.
inline constexpr char const* kLibraryCriteriaNotes =
    "An option on streams may be given several times, save --protocol and --simulation-element: "
    "one of its values must be met. With --hsr and --prp, packets that came over the other lane or "
    "network are left out.";

/// Adds an option for each member of a stream's identity in the library.
/// @param criteria  written while the command line is parsed
void addLibraryOptions(CommandDefinition& command, LibraryCriteria& criteria);

}  // namespace TalIec61850Tools
