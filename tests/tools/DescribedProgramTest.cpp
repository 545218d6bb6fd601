#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <regex>

#include "support/Process.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/commands/StreamsCommand.hpp"
#include "tools/help/ProgramDescription.hpp"

namespace TalIec61850Tools::DescribedProgramTest {
namespace {

using namespace TalTest;

/// A program with one command.
ProgramDescription describedProgram() {
    CLI::App program("A text.", "tal-iec61850");
    ProgramDefinition definition{.parser = program, .commands = {}};
    Action chosen;
    addStreamsCommand(definition, chosen);
    return describe(definition);
}

OptionDescription const& optionOf(CommandDescription const& command, std::string const& name) {
    return *std::find_if(command.options.begin(), command.options.end(),
                         [&](auto const& option) { return option.longName == name; });
}

TEST(DescribedProgram, HasItsCommandsWithTheirOptions) {
    auto const program = describedProgram();
    EXPECT_EQ(program.name, "tal-iec61850");
    ASSERT_EQ(program.commands.size(), 1U);
    auto const& streams = program.commands[0];
    EXPECT_EQ(streams.name, "streams");
    EXPECT_EQ(streams.argumentName, "FILE");
    auto const& format = optionOf(streams, "format");
    EXPECT_EQ(format.shortName, "f");
    EXPECT_EQ(format.valueName, "FORMAT");
    EXPECT_EQ(format.choices, (std::vector<std::string>{"table", "json", "csv", "spreadsheet"}));
    EXPECT_EQ(optionOf(streams, "quiet").valueName, "");
    EXPECT_EQ(optionOf(streams, "svid").choices, std::vector<std::string>{});
}

TEST(DescribedProgram, HasNotesAndExamplesApart) {
    auto const streams = describedProgram().commands[0];
    EXPECT_TRUE(streams.notes.starts_with("What the columns mean:"));
    EXPECT_EQ(streams.notes.find("Exit status"), std::string::npos);
    ASSERT_EQ(streams.examples.size(), 3U);
    EXPECT_EQ(streams.examples[0], "tal-iec61850 streams --format json bay1.pcap bay2.pcap");
}

/// The long options that a help text lists.
std::vector<std::string> optionsIn(std::string const& help) {
    std::vector<std::string> options;
    for (std::string const& line : linesOf(help)) {
        auto const begin = line.find("--");
        if (line.starts_with("  -") && begin != std::string::npos) {
            options.push_back(line.substr(begin, line.find(' ', begin) - begin));
        }
    }
    return options;
}

/// Without what man(7) wants before a dash.
std::string withoutEscapes(std::string text) {
    std::erase(text, '\\');
    return text;
}

TEST(DescribedProgram, IsTheSameInManualPageAndCompletionsAsInHelp) {
    auto const manual = withoutEscapes(runCompanion({"manual"}).out);
    auto const bash = runCompanion({"completion", "bash"}).out;
    auto const zsh = runCompanion({"completion", "zsh"}).out;
    auto const fish = runCompanion({"completion", "fish"}).out;
    for (std::string const command : {"streams", "packets", "show", "library streams",
                                      "library judge", "scl list", "scl check"}) {
        auto const options = optionsIn(runCompanion(joined(commandWords(command), {"--help"})).out);
        EXPECT_GE(options.size(), 17U) << command;
        EXPECT_NE(manual.find(".SS \"" + command + "\""), std::string::npos);
        for (auto const& option : options) {
            EXPECT_NE(manual.find(option), std::string::npos) << option;
            EXPECT_NE(bash.find(option), std::string::npos) << option;
            EXPECT_NE(zsh.find("'*" + option), std::string::npos) << option;
            EXPECT_NE(fish.find("_from " + commandWords(command).back()), std::string::npos)
                << command;
            EXPECT_NE(fish.find(" -l " + option.substr(2) + " "), std::string::npos) << option;
        }
    }
}

TEST(ManualPage, HasNoLineThatReadsAsARequestUnlessItIsOne) {
    for (std::string const& line : linesOf(runCompanion({"manual"}).out)) {
        EXPECT_FALSE(line.starts_with('\''));
        if (line.starts_with('.')) {
            EXPECT_TRUE(line == ".nf" || line == ".fi" || line == ".PP" || line == ".TP" ||
                        line.starts_with(".TH ") || line.starts_with(".SH ") ||
                        line.starts_with(".SS ") || line.starts_with(".B ") ||
                        line.starts_with(".I "))
                << line;
        }
    }
}

TEST(HelpAndManualPage, Fit80Columns) {
    for (std::string const command :
         {"", "streams", "packets", "show", "completion", "manual", "library", "library streams",
          "library judge", "captures", "scl", "scl list", "scl subscribers", "scl check"}) {
        for (auto const& line :
             linesOf(runCompanion(joined(commandWords(command), {"--help"})).out)) {
            EXPECT_LE(line.size(), 80U) << command << ": " << line;
        }
    }
    // Lines that are not filled are indented by seven columns.
    auto const page =
        std::regex_replace(runCompanion({"manual"}).out, std::regex(R"(\\(\(..|.))"), "x");
    bool isFilled = true;
    for (auto const& line : linesOf(page)) {
        isFilled = line == ".nf" ? false : (line == ".fi" ? true : isFilled);
        EXPECT_TRUE(isFilled || line.size() <= 73) << line;
    }
}

TEST(ManualPage, IsTypesetWithoutAWarning) {
    TempDir const folder;
    auto const page = runCompanion({"manual"}).out;
    auto const path = folder.write("tal-iec61850.1", Bytes(page.begin(), page.end()));
    auto const result =
        run({"/bin/sh", "-c",
             "command -v groff >/dev/null || exit 77; exec groff -man -ww -Tutf8 -z \"$PAGE\""},
            {{"PAGE", path}});
    if (result.status == 77) {
        GTEST_SKIP() << "groff is not installed here";
    }
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

}  // namespace
}  // namespace TalIec61850Tools::DescribedProgramTest
