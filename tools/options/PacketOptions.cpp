#include "tools/options/PacketOptions.hpp"

#include <CLI/CLI.hpp>

namespace TalIec61850Tools {

void addPacketOptions(CommandDefinition& command, PacketOptions& options) {
    addWindowOptions(command, options.window);
    command.parser
        ->add_flag("-c,--context", options.withContext,
                   "Add, of each GOOSE stream in each file, the last packet before the window and "
                   "the first behind it")
        ->group(kWindowGroup);
    addCriteriaOptions(command, options.criteria);
}

}  // namespace TalIec61850Tools
