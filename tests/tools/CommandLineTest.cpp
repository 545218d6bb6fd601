#include <gtest/gtest.h>

#include <TalIec61850Parser/Version.hpp>

#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest {
namespace {

using Arguments = std::vector<std::string>;

void expectUsageError(Arguments const& arguments, std::string const& message) {
    auto const result = runCompanion(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, complaint(message));
}

TEST(CommandLine, WithoutArgumentsPointsToHelp) {
    expectUsageError({}, "no command given, see tal-iec61850 --help");
    expectUsageError({"--"}, "no command given, see tal-iec61850 --help");
}

TEST(CommandLine, NeedsAFile) {
    expectUsageError({"streams"}, "streams: FILE is required");
    expectUsageError({"streams", "--quiet"}, "streams: FILE is required");
}

TEST(CommandLine, RefusesWhatItDoesNotKnow) {
    expectUsageError({"nothing"}, "there is no command nothing, see tal-iec61850 --help");
    expectUsageError({"library", "nothing"},
                     "library: there is no command nothing, see tal-iec61850 library --help");
    expectUsageError({"streams", "--nothing", "a"}, "streams: there is no option --nothing");
    expectUsageError({"streams", "-x"}, "streams: there is no option -x");
    expectUsageError({"-q", "streams", "a"}, "there is no option -q");
    expectUsageError({"streams", "-f", "xml", "a"},
                     "streams: --format: xml is none of table, json, csv, spreadsheet");
    expectUsageError({"manual", "a"}, "manual: The following argument was not expected: a");
}

TEST(CommandLine, NamesWhatMayBeMeant) {
    expectUsageError({"strems", "a"}, "there is no command strems; did you mean streams?");
    expectUsageError({"Packets", "a"}, "there is no command Packets; did you mean packets?");
    expectUsageError({"library", "juge", "a"},
                     "library: there is no command juge; did you mean judge?");
    expectUsageError({"streams", "--colour", "a"},
                     "streams: there is no option --colour; did you mean --color?");
    expectUsageError({"streams", "--gocbreff=x", "a"},
                     "streams: there is no option --gocbreff; did you mean --gocbref?");
    expectUsageError({"streams", "--sort", "pakets", "a"},
                     "streams: --sort: pakets is none of identity, source, destination, appid, "
                     "name, packets, rate, first, last; did you mean packets?");
}

TEST(CommandLine, RefusesAnOptionBeforeItMissesAFile) {
    expectUsageError({"streams", "--foo"}, "streams: there is no option --foo");
}

TEST(CommandLine, IgnoresTheLetterCaseOfChoices) {
    TempFile const capture(smallCapture());
    EXPECT_EQ(jsonOf(runCompanion({"streams", capture.path(), "-f", "JSON"}).out),
              streamsOf({capture.path()}));
}

TEST(CommandLine, OfAFileAloneListsItsStreams) {
    TempFile const capture(smallCapture());
    auto const streams = runCompanion({"streams", capture.path()});
    EXPECT_EQ(streams.status, 0);
    EXPECT_EQ(runCompanion({capture.path()}).out, streams.out);
    EXPECT_EQ(runCompanion({"--", capture.path()}).out, streams.out);
    EXPECT_EQ(runCompanion({"-", "-f", "json"}, {.inputFile = capture.path()}).out,
              runCompanion({"streams", "-f", "json", capture.path()}).out);
    EXPECT_EQ(runCompanion({"-qf", "csv", capture.path()}).out,
              runCompanion({"streams", "-qf", "csv", capture.path()}).out);
    EXPECT_EQ(runCompanion({"missing.pcap"}).err,
              complaint("missing.pcap: No such file or directory"));
}

TEST(CommandLine, OfAPacketAloneShowsIt) {
    TempFile const capture(smallCapture());
    auto const row = jsonOf(runCompanion({"packets", "-f", "json", capture.path()}).out).at(0);
    std::string const packet =
        capture.path() + "@" + std::to_string(row.at("position").get<std::uint64_t>());
    EXPECT_EQ(runCompanion({packet}).status, 0);
    EXPECT_EQ(runCompanion({packet}).out, runCompanion({"show", packet}).out);
}

TEST(CommandLine, TakesHelpAsACommand) {
    EXPECT_EQ(runCompanion({"help"}).out, runCompanion({"--help"}).out);
    EXPECT_EQ(runCompanion({"help", "streams"}).out, runCompanion({"streams", "--help"}).out);
    EXPECT_EQ(runCompanion({"help", "library", "judge"}).out,
              runCompanion({"library", "judge", "--help"}).out);
    expectUsageError({"help", "nothing"}, "there is no command nothing, see tal-iec61850 --help");
}

TEST(CommandLine, EscapesWhatItRepeats) {
    expectUsageError({"\x1b[2J\n"}, R"(there is no command \x1b[2J\n, see tal-iec61850 --help)");
}

TEST(CommandLine, HelpsWithAnExample) {
    auto const help = runCompanion({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_NE(help.out.find("streams"), std::string::npos);
    EXPECT_NE(help.out.find("Example:\n  tal-iec61850 streams "), std::string::npos);
    EXPECT_EQ(runCompanion({"-h"}).out, help.out);
}

TEST(CommandLine, HelpsWithEachSubcommand) {
    auto const help = runCompanion({"streams", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_NE(help.out.find("--format"), std::string::npos);
    EXPECT_NE(help.out.find("Example:\n  tal-iec61850 streams "), std::string::npos);
}

TEST(CommandLine, HelpNamesEveryJsonField) {
    TempFile const capture(smallCapture());
    auto const help = runCompanion({"streams", "--help"}).out;
    auto const row = streamsOf({capture.path()}).at(0);
    for (auto const& field : row.items()) {
        EXPECT_NE(help.find(field.key()), std::string::npos) << field.key();
    }
}

TEST(CommandLine, TellsTheVersion) {
    auto const result = runCompanion({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "tal-iec61850 " TALIEC61850PARSER_VERSION "\n");
    for (auto const& arguments : {std::vector<std::string>{"-V"},
                                  {"streams", "--version"},
                                  {"library", "judge", "-V", "a"}}) {
        EXPECT_EQ(runCompanion(arguments).out, result.out);
    }
}

TEST(CommandLine, TakesOptionsBehindFiles) {
    TempFile const capture(smallCapture());
    auto const result = runCompanion({"streams", capture.path(), "--format=json", "-q"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(jsonOf(result.out), streamsOf({capture.path()}));
}

}  // namespace
}  // namespace TalTest
