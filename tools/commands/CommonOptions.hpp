#pragma once

#include <string>
#include <vector>

#include "tools/output/RowWriter.hpp"

namespace CLI {
class App;
}

namespace TalIec61850Tools {

/// What every command that reads captures takes.
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

/// How the help of every command ends: its own notes, what all of them have alike, command lines as
/// examples.
/// @param notes     ends with a line end
/// @param examples  without the name of the program
[[nodiscard]] std::string makeHelpFooter(std::string const& notes,
                                         std::vector<std::string> const& examples);

/// The parts of a footer.
struct HelpFooter {
    std::string notes;
    /// With the name of the program.
    std::vector<std::string> examples;
};

/// Takes a footer apart again, or one that consists of examples alone.
[[nodiscard]] HelpFooter splitHelpFooter(std::string const& footer);

}  // namespace TalIec61850Tools
