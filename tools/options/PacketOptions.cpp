#include "tools/options/PacketOptions.hpp"

#include <CLI/CLI.hpp>

#include "tools/options/JobsOption.hpp"
#include "tools/options/LimitOption.hpp"
#include "tools/options/StreamOptions.hpp"

namespace TalIec61850Tools {

void addPacketOptions(CommandDefinition& command, PacketOptions& options) {
    addJobsOption(command, options.common.jobs);
    addWindowOptions(command, options.window);
    command.parser
        ->add_flag("-c,--context", options.withContext,
                   "Add, of each GOOSE stream in each file, the last packet before the window and "
                   "the first after it")
        ->group(kWindowGroup);
    addLimitOption(command, options.limit, kWindowGroup, "packets");
    addWireOptions(command, options.criteria);
    addCounterOptions(command, options.criteria);
}

}  // namespace TalIec61850Tools
