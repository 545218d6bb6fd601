#include <gtest/gtest.h>

#include <TalIec61850Parser/Version.hpp>

#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::CommandLineTest {
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
    expectUsageError({"-q", "streams", "a"},
                     "there is no option -q; options of a command come after it");
    expectUsageError({"streams", "-f", "xml", "a"},
                     "streams: --format: xml is none of table, json, csv, spreadsheet");
    expectUsageError({"manual", "a"}, "manual: there is no use for a");
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

TEST(CommandLine, NamesTheCommandsThatHaveAnOption) {
    expectUsageError({"streams", "--stnum", "5", "a"},
                     "streams: there is no option --stnum; packets, show have it");
    expectUsageError({"redundancy", "--timeline", "a"},
                     "redundancy: there is no option --timeline; events has it");
    expectUsageError({"streams", "--members", "a"},
                     "streams: there is no option --members; scl list has it");
}

TEST(CommandLine, NamesOneOfManyChoicesWhereItIsMeant) {
    expectUsageError({"check", "--kind", "sampelGap", "a"},
                     "check: --kind: sampelGap is not known; did you mean sampleGap?");
}

TEST(CommandLine, RefusesAnOptionWithoutItsValue) {
    expectUsageError({"library", "judge", "--svid"}, "library judge: --svid: a value is missing");
    expectUsageError({"streams", "a", "-f"}, "streams: --format: a value is missing");
}

TEST(CommandLine, RefusesRangesThatAreNone) {
    for (std::string const range : {"-1", "5-", "9-7", "-", ""}) {
        expectUsageError({"packets", "--smpcnt", range, "a"},
                         "packets: --smpcnt: " + range + " is not a number or a range such as 7-9");
    }
}

TEST(CommandLine, ReadsCountsAsDecimalNumbersAlone) {
    expectUsageError({"events", "--limit", "0x10", "a"},
                     "events: --limit: 0x10 is not a number of rows");
    expectUsageError({"packets", "--limit", "0x10", "a"},
                     "packets: --limit: 0x10 is not a number of packets");
    expectUsageError({"plot", "--width", "0x400", "a"},
                     "plot: --width: 0x400 is not pixels, from 320 to 4000");
}

TEST(CommandLine, PointsToTheFieldsWhereNoneIsMeant) {
    TempFile const capture(smallCapture());
    expectUsageError({"streams", "--columns", "svID,nothing", capture.path()},
                     "--columns: there is no field nothing; --help lists them");
}

TEST(CommandLine, RefusesToWriteOverAnInput) {
    TempFile const capture(smallCapture());
    auto const message = "the output " + capture.path() + " is one of the files to be read";
    expectUsageError({"packets", "-w", capture.path(), capture.path()}, message);
    expectUsageError({"streams", "-o", capture.path(), capture.path()}, message);
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

TEST(CommandLine, HasOneEmptyLineBetweenTheGroupsOfAHelp) {
    EXPECT_EQ(runCompanion({"check", "--help"}).out.find("\n\n\n"), std::string::npos);
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
}  // namespace TalTest::CommandLineTest
