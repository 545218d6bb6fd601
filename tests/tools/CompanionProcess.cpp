#include "tools/CompanionProcess.hpp"

namespace TalTest {

std::string companionPath() { return TAL_COMPANION_PATH; }

ProcessResult runCompanion(std::vector<std::string> const& arguments,
                           Surroundings const& surroundings) {
    std::vector<std::string> command = {companionPath()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command, surroundings);
}

}  // namespace TalTest
