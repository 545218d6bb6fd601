#include "tools/help/HelpFooter.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "tools/options/ExitStatus.hpp"
#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kFormats =
    "json writes one object per line, csv one line per row below a line of names, spreadsheet the "
    "same, with an apostrophe before "
    "texts that would be formulas. Table and csv "
    R"(show control characters in names as \n, \x1b and the like, a backslash as \\.)";

std::string exitStatusParagraph() {
    std::string text;
    for (ExitStatusText const& status : exitStatusTexts()) {
        text += fmt::format("{} {} {}", text.empty() ? "Exit status:" : ";",
                            static_cast<int>(status.status), status.brief);
    }
    return paragraph(text + ".") + "\n";
}

}  // namespace

std::string helpFooter(CommandDefinition const& command) {
    std::string footer = command.notes;
    if (command.readsCaptures) {
        footer += "\n" + paragraph(kFormats) + "\n" + exitStatusParagraph();
    }
    footer += "Example:";
    for (auto const& example : command.examples) {
        footer += "\n  " + example;
    }
    return footer;
}

void addHelpFooters(ProgramDefinition& program) {
    for (CommandDefinition const& command : program.commands) {
        command.parser->footer(helpFooter(command));
    }
}

}  // namespace TalIec61850Tools
