#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// Replaces short forms of command lines by the whole ones:
///
/// - a file without a command is `streams` of it, a packet FILE@POSITION is `show`;
/// - `help streams` is `streams --help`, `help` alone is --help;
/// - --version and -V are understood after a command too.
///
/// @param program    has all its commands
/// @param arguments  without the program's name
[[nodiscard]] std::vector<std::string> intendedCommand(CLI::App const& program,
                                                       std::vector<std::string> arguments);

/// Refuses a command or an option that the program does not have, and names the one that may be
/// meant.
/// @throws UsageError
void refuseUnknown(CLI::App const& program, std::vector<std::string> const& arguments);

}  // namespace TalIec61850Tools
