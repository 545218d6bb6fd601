#pragma once

#include <string>
#include <vector>

#include "tools/options/CommandDefinition.hpp"

namespace TalIec61850Tools {

/// The heading of the options on descriptions in a help.
inline constexpr char const* kDescriptionGroup = "Which description";

/// What a help says of FILE arguments that are descriptions.
inline constexpr char const* kDescriptionFiles =
    "Descriptions of the station (SCD, CID, ICD, IID, SSD), or folders with some";

/// Adds --scl, which may be given several times.
/// @param paths  of descriptions, or of folders with some; written while the command line is parsed
/// @param help   what they are for
void addSclOption(CommandDefinition& command, std::vector<std::string>& paths,
                  std::string const& help);

/// Adds --ied, which may be given several times.
/// @param ieds  patterns of names, see meetsPattern; written while the command line is parsed
/// @param help  what is selected
void addIedOption(CommandDefinition& command, std::vector<std::string>& ieds,
                  std::string const& help);

}  // namespace TalIec61850Tools
