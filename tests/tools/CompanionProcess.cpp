#include "tools/CompanionProcess.hpp"

namespace TalTest {

ProcessResult runCompanion(std::vector<std::string> const& arguments,
                           Surroundings const& surroundings) {
    std::vector<std::string> command = {TAL_COMPANION_PATH};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command, surroundings);
}

}  // namespace TalTest
