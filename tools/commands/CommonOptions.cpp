#include "tools/commands/CommonOptions.hpp"

#include <CLI/CLI.hpp>
#include <map>

namespace TalIec61850Tools {

namespace {

constexpr char const* kCommonNotes = R"(
json writes one object per line, csv one line per row below a line of names. Table and csv
show control characters in names as \n, \x1b and the like, a backslash as \\.

Exit status: 0 fine; 1 wrong usage; 2 a file is damaged, could not be read, or output could not
be written: the rest was done all the same.

Example:)";

}  // namespace

void addCommonOptions(CLI::App& command, CommonOptions& options, std::string const& filesHelp) {
    static std::map<std::string, Format> const formats = {
        {"table", Format::table}, {"json", Format::json}, {"csv", Format::csv}};
    command.add_option("FILE", options.files, filesHelp)->required()->option_text("...");
    command
        .add_option_function<std::string>(
            "-f,--format",
            [&options](std::string const& name) { options.format = formats.at(name); },
            "What to write: table (if not said), json or csv")
        ->check(CLI::IsMember({"table", "json", "csv"}))
        ->option_text("FORMAT");
    command
        .add_option("-o,--output", options.outputFile,
                    "Write into FILE, which appears when all is written")
        ->option_text("FILE");
    command.add_flag("-q,--quiet", options.quiet, "Show no progress and no summary");
    command
        .add_option("--color", options.colour,
                    "Headings in bold: auto (if not said; on a terminal, unless NO_COLOR is "
                    "set), always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->option_text("WHEN");
}

std::string helpFooter(std::string const& notes, std::vector<std::string> const& examples) {
    std::string footer = notes + kCommonNotes;
    for (auto const& example : examples) {
        footer += "\n  tal-iec61850 " + example;
    }
    return footer;
}

}  // namespace TalIec61850Tools
