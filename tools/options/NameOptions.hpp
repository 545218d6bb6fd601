#pragma once

#include "tools/options/CommandDefinition.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// What a help says about --scl: a paragraph, not broken into lines.
inline constexpr char const* kNameNotes =
    "With --scl, streams are looked up in the description of the station (SCD, CID, ICD, IID, SSD, "
    "or a folder of these): by gocbRef or svID, else by destination and APPID. Values "
    "and channels have names from it, such as LD0/PTRC1.Tr.general; where a message is not as it "
    "is "
    "described, names end there, which is told once a stream. --ied selects streams that an IED "
    "publishes.";

/// Adds --scl and --ied.
/// @param common    written while the command line is parsed
/// @param criteria  likewise
void addNameOptions(CommandDefinition& command, CommonOptions& common, StreamCriteria& criteria);

/// @throws UsageError  an IED is asked for, and nothing describes any
void checkNameOptions(CommonOptions const& common, StreamCriteria const& criteria);

}  // namespace TalIec61850Tools
