#include "tools/options/CommonOptions.hpp"

#include <CLI/CLI.hpp>
#include <map>

namespace TalIec61850Tools {

void addInputOptions(CommandDefinition& command, CommonOptions& options,
                     std::string const& filesHelp) {
    command.readsCaptures = true;
    CLI::App& parser = *command.parser;
    parser.add_option("FILE", options.files, filesHelp)->required()->option_text("...");
    parser.add_flag("-q,--quiet", options.quiet,
                    "Show no progress, no summary, no note where nothing matches");
}

CLI::Option& addOutputOption(CLI::App& parser, std::string& outputFile, std::string const& help) {
    CLI::Option& option = *parser.add_option_function<std::string>(
        "-o,--output",
        [&outputFile](std::string const& file) { outputFile = file == "-" ? "" : file; }, help);
    option.option_text("FILE");
    return option;
}

void addCommonOptions(CommandDefinition& command, CommonOptions& options,
                      std::string const& filesHelp) {
    static std::map<std::string, Format> const formats = {{"table", Format::table},
                                                          {"json", Format::json},
                                                          {"csv", Format::csv},
                                                          {"spreadsheet", Format::spreadsheet}};
    addInputOptions(command, options, filesHelp);
    CLI::App& parser = *command.parser;
    CLI::Option& format = *parser.add_option_function<std::string>(
        "-f,--format", [&options](std::string const& name) { options.format = formats.at(name); },
        "What to write: table (if not said), json, csv, or csv for a spreadsheet");
    format.option_text("FORMAT");
    allowOnly(command, format, {"table", "json", "csv", "spreadsheet"});
    addOutputOption(parser, options.outputFile,
                    "Write into FILE, which appears when all is written");
    parser
        .add_option("--columns", options.columns,
                    "Fields to write, in their order, such as time,svID; json and csv name them")
        ->option_text("NAMES")
        ->delimiter(',')
        ->allow_extra_args(false);
    parser.add_flag("--wide", options.wide,
                    "Write tables whole on a terminal, where they are fitted otherwise");
    CLI::Option& colour =
        *parser.add_option("--color", options.colour,
                           "Bold and colours: auto (if not said; on a terminal that is not dumb, "
                           "unless NO_COLOR is set), always or never");
    colour.option_text("WHEN");
    allowOnly(command, colour, {"auto", "always", "never"});
}

}  // namespace TalIec61850Tools
