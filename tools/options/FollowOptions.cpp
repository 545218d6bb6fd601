#include "tools/options/FollowOptions.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/options/UsageError.hpp"
#include "tools/options/WindowOptions.hpp"

namespace TalIec61850Tools {

void FollowOptions::check(CommonOptions const& common) const {
    if (idle && !isOn) {
        throw UsageError("--idle goes with --follow");
    }
    if (!isOn) {
        return;
    }
    if (!common.outputFile.empty()) {
        throw UsageError("--follow writes to standard output; --output does not go with it");
    }
    if (std::find(common.files.begin(), common.files.end(), "-") != common.files.end()) {
        throw UsageError("--follow reads files and folders, not standard input");
    }
}

void addFollowOptions(CommandDefinition& command, FollowOptions& options) {
    command.parser->add_flag("-F,--follow", options.isOn,
                             "Go on with what is added to the captures, and to folders");
    addLengthOption(command, "--idle", options.idle,
                    "With --follow: end when nothing was added for LENGTH");
}

}  // namespace TalIec61850Tools
