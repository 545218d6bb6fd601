#pragma once

#include "tools/commands/Action.hpp"
#include "tools/library/LibraryCriteria.hpp"
#include "tools/options/CommonOptions.hpp"

namespace TalIec61850Tools {

/// The arguments of `tal-iec61850 library judge`.
struct JudgeOptions {
    CommonOptions common;
    LibraryCriteria criteria;
    /// One row for each frame, not for each verdict.
    bool listsFrames = false;
};

/// Adds the subcommand to a group.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addJudgeCommand(ProgramDefinition& program, CommandDefinition const& group, Action& chosen);

/// Judges every frame of the captures by itself and writes the number of frames of each verdict, or
/// the verdict on each frame.
/// @throws OutputError, UsageError  see CommandRun
[[nodiscard]] ExitStatus runJudge(JudgeOptions const& options);

}  // namespace TalIec61850Tools
