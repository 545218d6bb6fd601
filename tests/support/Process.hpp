#pragma once

#include <string>
#include <utility>
#include <vector>

namespace TalTest {

/// What became of a program that was run to its end.
struct ProcessResult {
    /// The exit status, or 128 and the signal that ended it, as a shell tells it. A program that
    /// has not ended after five minutes is ended by SIGKILL.
    int status = 0;
    std::string out;
    std::string err;
};

/// Environment variables that a program is given besides those of the test itself.
using ExtraEnvironment = std::vector<std::pair<std::string, std::string>>;

/// Where a program's standard output goes.
enum class StandardOutputIs {
    kept,    ///< to the test
    full,    ///< to a device on which there is never room
    closed,  ///< nowhere: the program starts without it
};

/// What a program finds around it.
struct Surroundings {
    StandardOutputIs output = StandardOutputIs::kept;
    /// Standard error is a terminal of this many columns, 0 for one that does not say; below zero
    /// for no terminal.
    int terminalColumns = -1;
    ExtraEnvironment environment = {};
};

/// Runs a program without a shell between and waits for it; its standard input is empty.
/// @param command  the program's path, then its arguments as they stand
/// @throws std::system_error when the program cannot be started
ProcessResult run(std::vector<std::string> const& command, Surroundings const& surroundings);
ProcessResult run(std::vector<std::string> const& command, ExtraEnvironment const& extra = {});

}  // namespace TalTest
