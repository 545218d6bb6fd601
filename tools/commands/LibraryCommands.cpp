#include "tools/commands/LibraryCommands.hpp"

#include "tools/commands/JudgeCommand.hpp"
#include "tools/commands/LibraryStreamsCommand.hpp"

namespace TalIec61850Tools {

void addLibraryCommands(ProgramDefinition& program, Action& chosen) {
    CommandDefinition& group = addCommandGroup(
        program, "library", "Show what the library TalIec61850Parser itself answers.");
    group.notes = "For programs that use the library: its own index and verdicts.\n\n";
    group.examples = {"tal-iec61850 library judge --protocol goose bay1.pcap"};
    addLibraryStreamsCommand(program, group, chosen);
    addJudgeCommand(program, group, chosen);
}

}  // namespace TalIec61850Tools
