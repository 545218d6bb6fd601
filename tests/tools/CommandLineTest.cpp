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
    expectUsageError({"strems"}, "The following argument was not expected: strems");
    expectUsageError({"streams", "--colour", "a"},
                     "streams: The following argument was not expected: --colour");
    expectUsageError({"streams", "-f", "xml", "a"},
                     "streams: --format: xml not in {table,json,csv}");
}

TEST(CommandLine, EscapesWhatItRepeats) {
    expectUsageError({"\x1b[2J\n"}, R"(The following argument was not expected: \x1b[2J\n)");
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
}

TEST(CommandLine, TakesOptionsBehindFiles) {
    TempFile const capture(smallCapture());
    auto const result = runCompanion({"streams", capture.path(), "--format=json", "-q"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(jsonOf(result.out), streamsOf({capture.path()}));
}

}  // namespace
}  // namespace TalTest
