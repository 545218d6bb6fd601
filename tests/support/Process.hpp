#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/Bytes.hpp"

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
    kept,      ///< to the test
    full,      ///< to a device on which there is never room
    closed,    ///< nowhere: the program starts without it
    terminal,  ///< to a terminal, and from there to the test
};

/// What a program finds around it.
struct Surroundings {
    StandardOutputIs output = StandardOutputIs::kept;
    /// Of the terminal that standard output is.
    int outputColumns = 80;
    /// Standard error is a terminal of this many columns, 0 for one that does not say; below zero
    /// for no terminal.
    int terminalColumns = -1;
    ExtraEnvironment environment = {};
    /// The file that standard input is redirected from; it is empty without one.
    std::string inputFile = "/dev/null";
    /// What comes through a pipe into standard input instead.
    std::optional<Bytes> inputPiped = {};
    /// The working folder; empty for the test's own.
    std::string workingFolder = {};
    /// Sent to the program as soon as it has written something to standard error, which is then a
    /// pipe that is not read on before; 0 for none.
    int signalAtFirstError = 0;
};

/// Runs a program without a shell between and waits for it.
/// @param command  the program's path, then its arguments as they stand
/// @throws std::system_error when the program cannot be started
ProcessResult run(std::vector<std::string> const& command, Surroundings const& surroundings);
ProcessResult run(std::vector<std::string> const& command, ExtraEnvironment const& extra = {});

}  // namespace TalTest
