#pragma once

#include <string>
#include <utility>
#include <vector>

namespace TalTest {

/// What became of a program that was run to its end.
struct ProcessResult {
    /// The exit status, or 128 and the signal that ended it, as a shell tells it.
    int status = 0;
    std::string out;
    std::string err;
};

/// Environment variables that a program is given besides those of the test itself.
using ExtraEnvironment = std::vector<std::pair<std::string, std::string>>;

/// Runs a program without a shell between and waits for it; its standard input is empty.
/// @param command  the program's path, then its arguments as they stand
/// @throws std::system_error when the program cannot be started
ProcessResult run(std::vector<std::string> const& command, ExtraEnvironment const& extra = {});

}  // namespace TalTest
