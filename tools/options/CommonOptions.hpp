#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/options/CommandDefinition.hpp"
#include "tools/output/RowWriter.hpp"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace TalIec61850Tools {

/// The options of every command that reads captures.
struct CommonOptions {
    /// FILE arguments: captures, folders, or - for standard input.
    std::vector<std::string> files;
    Format format = Format::table;
    /// Empty for standard output.
    std::string outputFile;
    bool quiet = false;
    /// Names of the fields to write, in their order; empty for all.
    std::vector<std::string> columns;
    /// Tables on a terminal as wide as their cells.
    bool wide = false;
    /// How many files are read at a time; 0 for as many as the machine has cores.
    std::size_t jobs = 0;
    /// auto, always or never
    std::string colour = "auto";
    /// Descriptions of the station, files and folders; empty for none.
    std::vector<std::string> descriptions;
};

/// Adds what commands have that read captures and write no rows: the FILE arguments, and --quiet.
/// @param options    written while the command line is parsed
/// @param filesHelp  what the FILE arguments are
void addInputOptions(CommandDefinition& command, CommonOptions& options,
                     std::string const& filesHelp =
                         "Captures, compressed or not, pipes, folders, or - for "
                         "standard input");

/// Adds the option that says where to write.
/// @param outputFile  written while the command line is parsed; empty for standard output, which
///                    is `-` there
/// @param help        what is written
CLI::Option& addOutputOption(CLI::App& parser, std::string& outputFile, std::string const& help);

/// Adds the options, and the FILE arguments.
/// @param options    written while the command line is parsed
/// @param filesHelp  what the FILE arguments are
void addCommonOptions(CommandDefinition& command, CommonOptions& options,
                      std::string const& filesHelp =
                          "Captures, compressed or not, pipes, folders, or - for "
                          "standard input");

}  // namespace TalIec61850Tools
