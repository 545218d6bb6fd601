#include "tools/commands/SclCommands.hpp"

#include "tools/commands/SclCheckCommand.hpp"
#include "tools/commands/SclListCommand.hpp"
#include "tools/commands/SclSubscribersCommand.hpp"

namespace TalIec61850Tools {

void addSclCommands(ProgramDefinition& program, Action& chosen) {
    CommandDefinition& group = addCommandGroup(
        program, "scl", "Show what a station's description says, and whether captures agree.");
    group.notes = "Descriptions are files of SCL (IEC 61850-6): SCD, CID, ICD, IID, SSD.\n\n";
    group.examples = {"tal-iec61850 scl check station.scd bay1.pcap"};
    addSclListCommand(program, group, chosen);
    addSclSubscribersCommand(program, group, chosen);
    addSclCheckCommand(program, group, chosen);
}

}  // namespace TalIec61850Tools
