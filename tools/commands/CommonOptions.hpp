#pragma once

#include <string>
#include <vector>

#include "tools/output/RowWriter.hpp"

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// What every command takes.
struct CommonOptions {
    /// FILE arguments: captures, folders, or - for standard input.
    std::vector<std::string> files;
    Format format = Format::table;
    /// Empty for standard output.
    std::string outputFile;
    bool quiet = false;
    /// auto, always or never
    std::string colour = "auto";
};

/// Adds the options, and the FILE arguments.
/// @param options  written while the command line is parsed
/// @param filesHelp  what the FILE arguments are
void addCommonOptions(CLI::App& command, CommonOptions& options,
                      std::string const& filesHelp =
                          "Captures, folders of captures, or - for "
                          "standard input");

/// How the help of every command ends: what a command's own notes say, then what all have alike.
/// @param example  command lines, without the name of the program
[[nodiscard]] std::string helpFooter(std::string const& notes,
                                     std::vector<std::string> const& examples);

}  // namespace TalIec61850Tools
