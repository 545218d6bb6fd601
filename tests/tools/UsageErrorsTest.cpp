// Command lines that make no sense: one line says so, and nothing is done.

#include <gtest/gtest.h>

#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::UsageErrorsTest {
namespace {

std::vector<Arguments> const kCommands = {
    {"streams"}, {"packets"}, {"show"}, {"library", "streams"}, {"library", "judge"}};

/// Expects each list of arguments to be refused after a command and a file, and before the file.
void expectRefused(std::vector<Arguments> const& commands,
                   std::vector<Arguments> const& wrongArguments) {
    TempFile const file(smallCapture());
    for (auto const& command : commands) {
        for (auto const& arguments : wrongArguments) {
            expectUsageError(joined(joined(command, {file.path()}), arguments));
        }
    }
}

TEST(WrongUsage, IsAnUnknownOrIncompleteOption) {
    expectRefused(kCommands, {{"--nothing"},
                              {"-x"},
                              {"--format"},
                              {"-o"},
                              {"--output"},
                              {"--color"},
                              {"--svid"},
                              {"--source"},
                              {"--Format", "json"}});
    expectRefused({{"streams"}, {"library", "judge"}}, {{"--from", "1"}, {"--context"}, {"-c"}});
    expectRefused({{"packets"}, {"show"}, {"library", "judge"}},
                  {{"--sort", "name"}, {"--reverse"}, {"-r"}});
    expectRefused({{"streams"}, {"packets"}, {"show"}}, {{"--list"}, {"-l"}});
}

TEST(WrongUsage, IsAValueThatAnOptionDoesNotTake) {
    expectRefused(kCommands, {{"--format", "xml"},
                              {"--format", ""},
                              {"--color", "yes"},
                              {"--columns", "nothing"},
                              {"--columns", ""},
                              {"--protocol", "mms"},
                              {"--simulation-element", "maybe"},
                              {"--hsr", "C"},
                              {"--hsr", "AB"},
                              {"--hsr", ""},
                              {"--prp", "1"}});
    expectRefused({{"streams"}}, {{"--sort", "colour"}, {"--sort", ""}});
}

TEST(WrongUsage, IsANumberAnAddressOrATimeThatIsNone) {
    expectRefused(kCommands, {{"--vlan", "4096"},
                              {"--appid", "0x"},
                              {"--reserved1-bit0", "2"},
                              {"--confrev", "-1"},
                              {"--source", "01:0c:cd:01:00"}});
    expectRefused({{"packets"}, {"show"}}, {{"--from", "yesterday"}, {"--to", "2024-02-30"}});
}

TEST(WrongUsage, IsASingleOptionGivenTwice) {
    expectRefused(kCommands, {{"-f", "json", "-f", "csv"},
                              {"-o", "/dev/null", "-o", "/dev/null"},
                              {"--protocol", "sv", "--protocol", "goose"},
                              {"--simulation-element", "yes", "--simulation-element", "no"}});
    expectRefused({{"packets"}, {"show"}}, {{"--from", "1", "--from", "2"}, {"--to=3", "--to=4"}});
}

TEST(WrongUsage, IsAnOptionWithAnEmptyValueAfterItsSign) {
    expectRefused({{"packets"}},
                  {{"--from="}, {"--to="}, {"--vlan="}, {"--format="}, {"--source="}});
    // What comes after it is not its value.
    TempFile const file(smallCapture());
    for (auto const* option : {"--from=", "--format=", "--source="}) {
        expectUsageError({"packets", option, file.path()});
        EXPECT_EQ(runCompanion({"packets", option, file.path()}).err.find(file.path()),
                  std::string::npos);
    }
    EXPECT_TRUE(rowsOf({"streams", "--svid=", file.path()}).empty());
}

TEST(WrongUsage, IsAValueForWhatTakesNone) {
    expectRefused(kCommands, {{"--="}, {"--quiet="}, {"--nothing="}, {"-q="}});
    expectRefused({{"library", "judge"}}, {{"--list="}});
    expectUsageError({"streams", "--=", "/nonexistent/a.pcap"});
    expectRefused({{"packets"}}, {{"--context="}});
}

TEST(WrongUsage, IsACommandWithoutAFile) {
    for (auto const& command : kCommands) {
        expectUsageError(command);
        expectUsageError(joined(command, {"--quiet"}));
        expectUsageError(joined(command, {"--"}));
    }
    expectUsageError({});
    expectUsageError({"library"});
    expectUsageError({"library", "a.pcap"});
    expectUsageError({"judge", "a.pcap"});
    expectUsageError({"nothing"});
    expectUsageError({"Streams", "a.pcap"});
}

TEST(WrongUsage, IsSaidBeforeAnythingIsRead) {
    for (auto const& command : kCommands) {
        auto const result = runCompanion(joined(command, {"/nonexistent", "--color", "x"}));
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err.find("nonexistent"), std::string::npos);
    }
}

TEST(Help, OfEveryCommandNamesItsOptionsAndAnExample) {
    for (auto const& command : kCommands) {
        for (auto const* option : {"--help", "-h"}) {
            auto const help = runCompanion(joined(command, {option}));
            EXPECT_EQ(help.status, 0);
            EXPECT_EQ(help.err, "");
            for (auto const* text :
                 {"--format", "--output", "--quiet", "--color", "--svid", "--gocbref", "--vlan",
                  "standard input", "Exit status", "Example:\n  tal-iec61850 "}) {
                EXPECT_NE(help.out.find(text), std::string::npos) << command.back() << " " << text;
            }
        }
    }
}

TEST(FileArguments, MayBeCalledLikeCommands) {
    TempDir const folder;
    Arguments const names = {"streams", "packets", "show", "captures", "library", "judge"};
    for (auto const& name : names) {
        folder.write(name, smallCapture());
    }
    Surroundings const there{.workingFolder = folder.path()};
    for (auto const& command : kCommands) {
        for (auto const& name : names) {
            EXPECT_FALSE(rowsOf(joined(command, {name}), there).empty())
                << command.back() << " " << name;
        }
    }
    EXPECT_EQ(fieldOf(rowsOf({"streams", "packets", "show", "library", "judge", "streams"}, there),
                      "files"),
              (std::vector<Json>{5, 5}));
}

}  // namespace
}  // namespace TalTest::UsageErrorsTest
