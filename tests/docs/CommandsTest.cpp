// Runs the commands that the documents show, and compares what they print.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "support/Process.hpp"
#include "support/TempFile.hpp"

namespace TalTest::CommandsTest {
namespace {

/// A line that begins with "    $ ", and the indented lines below it, with the empty ones between.
struct Command {
    std::string line;
    std::string output;
};

constexpr std::string_view kIndent = "    ";
constexpr std::string_view kPrompt = "    $ ";

std::vector<Command> commandsIn(std::string const& document) {
    std::ifstream file(std::string(TAL_DOCS) + "/" + document);
    std::vector<Command> commands;
    std::string emptyLines;  // of the output only if it goes on below them
    bool inOutput = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(kPrompt)) {
            commands.push_back({.line = line.substr(kPrompt.size()), .output = ""});
            emptyLines.clear();
            inOutput = true;
        } else if (inOutput && line.empty()) {
            emptyLines += "\n";
        } else if (inOutput && line.starts_with(kIndent)) {
            commands.back().output += emptyLines + line.substr(kIndent.size()) + "\n";
            emptyLines.clear();
        } else {
            inOutput = false;
        }
    }
    return commands;
}

/// Runs a command line as a reader would who has the built programs on PATH.
ProcessResult runIn(TempDir const& folder, std::string const& line) {
    return run({"/bin/sh", "-c", "cd \"$FOLDER\" && PATH=$PROGRAMS:$PATH && " + line},
               {{"FOLDER", folder.path()},
                {"PROGRAMS", TAL_PROGRAMS},
                {"LC_ALL", "C.UTF-8"},
                {"COLUMNS", ""}});
}

class Documents : public testing::TestWithParam<std::string> {};

TEST_P(Documents, ShowWhatTheirCommandsPrint) {
    auto const commands = commandsIn(GetParam());
    ASSERT_FALSE(commands.empty());
    TempDir const folder;
    // What scripts/demo leaves.
    EXPECT_EQ(runIn(folder, "station-capture station.pcap 30000").status, 0);
    std::filesystem::copy_file(std::string(TAL_DOCS) + "/station.scd", folder.file("station.scd"));
    for (Command const& command : commands) {
        auto const result = runIn(folder, command.line);
        EXPECT_EQ(result.out, command.output) << command.line;
        EXPECT_EQ(result.err, "") << command.line;
        EXPECT_EQ(result.status, 0) << command.line;
    }
}

INSTANTIATE_TEST_SUITE_P(Docs, Documents,
                         testing::Values("../README.md", "guide.md", "plot.md", "report.md",
                                         "samples.md", "scl.md", "supervision.md", "tool.md"),
                         [](auto const& document) {
                             return std::filesystem::path(document.param).stem().string();
                         });

}  // namespace
}  // namespace TalTest::CommandsTest
