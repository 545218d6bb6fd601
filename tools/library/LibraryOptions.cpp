#include "tools/library/LibraryOptions.hpp"

#include "tools/options/RepeatableOption.hpp"
#include "tools/options/StreamOptions.hpp"

namespace TalIec61850Tools {

void addLibraryOptions(CommandDefinition& command, LibraryCriteria& criteria) {
    addStreamOptions(command, criteria);
    addRepeatable(command, "--reserved1-bit0", criteria.reserved1Bit0, "BIT",
                  "Bit 0 of the second octet of Reserved 1: 0 or 1",
                  [](std::string const& option, std::string const& text) {
                      return static_cast<std::uint8_t>(numberValue(option, text, 1));
                  });
    addYesOrNo(command, "--simulation-element", criteria.simulationPresent,
               "Whether frames carry the simulation element (GOOSE): yes or no");
}

}  // namespace TalIec61850Tools
