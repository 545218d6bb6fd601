#include "tools/commands/CommonOptions.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <string_view>

namespace TalIec61850Tools {

namespace {

constexpr char const* kCommonNotes = R"(
json writes one object per line, csv one line per row below a line of names. Table and csv
show control characters in names as \n, \x1b and the like, a backslash as \\.

Exit status: 0 fine; 1 wrong usage; 2 a file is damaged, could not be read or was not found, a packet
that was named is not there, or output could not be written: the rest was done all the same.

)";
constexpr std::string_view kExamples = "Example:";
constexpr std::string_view kIndent = "\n  ";

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
                    "Headings in bold: auto (if not said; on a terminal that is not dumb, "
                    "unless NO_COLOR is set), always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->option_text("WHEN");
}

std::string makeHelpFooter(std::string const& notes, std::vector<std::string> const& examples) {
    std::string footer = notes + kCommonNotes;
    footer += kExamples;
    for (auto const& example : examples) {
        footer.append(kIndent).append("tal-iec61850 ").append(example);
    }
    return footer;
}

HelpFooter splitHelpFooter(std::string const& footer) {
    HelpFooter parts;
    std::size_t const begin = footer.find(kExamples);
    parts.notes = footer.substr(0, std::min(begin, footer.find(kCommonNotes)));
    std::size_t at = begin;
    while (at != std::string::npos && (at = footer.find(kIndent, at)) != std::string::npos) {
        at += kIndent.size();
        parts.examples.push_back(footer.substr(at, footer.find('\n', at) - at));
    }
    return parts;
}

}  // namespace TalIec61850Tools
