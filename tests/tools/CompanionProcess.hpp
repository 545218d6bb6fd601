#pragma once

#include <string>
#include <vector>

#include "support/Process.hpp"

namespace TalTest {

/// The companion program of this build.
[[nodiscard]] std::string companionPath();

/// Runs the companion program, without a shell between; its standard input is empty.
/// @throws std::system_error when it cannot be started
ProcessResult runCompanion(std::vector<std::string> const& arguments,
                           Surroundings const& surroundings = {});

}  // namespace TalTest
