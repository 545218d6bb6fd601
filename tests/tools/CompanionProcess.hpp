#pragma once

#include <string>
#include <utility>
#include <vector>

namespace TalTest {

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
    /// Set besides what the test itself has.
    std::vector<std::pair<std::string, std::string>> environment = {};
};

/// What became of the program.
struct CompanionResult {
    /// The exit status, or 128 and the signal that ended it. A program that has not ended after
    /// half a minute is ended by SIGKILL.
    int status = 0;
    std::string out;
    std::string err;
};

/// Runs the companion program, without a shell between; its standard input is empty.
/// @throws std::system_error when it cannot be started
CompanionResult runCompanion(std::vector<std::string> const& arguments,
                             Surroundings const& surroundings = {});

/// Runs any program so.
/// @param command  its path, then its arguments
CompanionResult runCommand(std::vector<std::string> command, Surroundings const& surroundings = {});

}  // namespace TalTest
