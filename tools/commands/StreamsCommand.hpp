#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/commands/ExitStatus.hpp"

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// What a command line asks for, once it has been understood; empty before.
using Action = std::function<ExitStatus()>;

/// The arguments of `tal-iec61850 streams`.
struct StreamsOptions {
    std::vector<std::string> files;
    /// table, json or csv
    std::string format = "table";
    bool quiet = false;
};

/// Adds the subcommand to the program.
/// @param chosen  set while the command line is parsed, if it asks for this subcommand
void addStreamsCommand(CLI::App& program, Action& chosen);

/// Indexes the files and writes one row per stream to standard output. A file that cannot be
/// indexed is named on standard error, with the reason; the others still are. A file given
/// twice, be it by two paths, is indexed once.
/// @throws OutputError  standard output cannot be written
[[nodiscard]] ExitStatus runStreams(StreamsOptions const& options);

}  // namespace TalIec61850Tools
