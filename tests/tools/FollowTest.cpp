// Captures that are listed while they are written.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/Process.hpp"
#include "support/Sanitized.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalIec61850Tools::FollowTest {
namespace {

using namespace TalTest;

Bytes messages(std::uint64_t first, std::uint64_t count) {
    TrafficCapture capture;
    for (std::uint64_t i = 0; i < count; ++i) {
        GooseMessage message;
        message.stNum = 1;
        message.sqNum = first + i;
        capture.addAt((first + i) * 1'000'000, gooseFrame(Ethernet(), message));
    }
    return capture.bytes();
}

/// Runs the program, and a command once its first lines have come: nothing has to be waited for.
/// @param lines    how many lines are waited for
/// @param command  of the shell; $1 and $2 are the other arguments
ProcessResult runAndThen(std::string const& arguments, int lines, std::string const& command,
                         std::string const& first, std::string const& second) {
    std::string reading;
    for (int i = 0; i < lines; ++i) reading += "read -r line; printf '%s\\n' \"$line\"; ";
    return run({"/bin/sh", "-c", "\"$0\" " + arguments + " | { " + reading + command + "; cat; }",
                companionPath(), first, second});
}

std::vector<std::string> sqNumsOf(std::string const& csv) {
    std::vector<std::string> lines = linesOf(csv);
    EXPECT_EQ(lines.empty() ? "" : lines.front(), "sqNum") << csv;
    if (!lines.empty()) lines.erase(lines.begin());
    return lines;
}

using Numbers = std::vector<std::string>;

TEST(Follow, ListsWhatIsAddedToAFile) {
    Bytes const capture = messages(0, 5);
    TempDir const folder;
    // The third record is there in part.
    std::size_t const record = (capture.size() - 24) / 5;
    auto const path = folder.write("bay1.pcap", prefix(capture, 24 + 2 * record + 20));
    auto const rest = folder.write(
        "rest",
        Bytes(capture.begin() + static_cast<std::ptrdiff_t>(24 + 2 * record + 20), capture.end()));
    auto const result = runAndThen("packets -F --limit 5 -f csv --columns sqNum \"$1\"", 3,
                                   "cat \"$2\" >> \"$1\"", path, rest);
    EXPECT_EQ(sqNumsOf(result.out), (Numbers{"0", "1", "2", "3", "4"})) << result.err;
    EXPECT_EQ(result.err, "");
}

TEST(Follow, ListsTheFilesThatAppearInAFolder) {
    TempDir const folder;
    TempDir const other;
    folder.write("ring1.pcap", messages(0, 2));
    auto const second = other.write("next.pcap", messages(2, 2));
    auto const result =
        runAndThen("packets --follow --limit 4 -f csv --columns sqNum \"$1\"", 3,
                   "cp \"$2\" \"$1\"/ring2.pcap; rm \"$1\"/ring1.pcap", folder.path(), second);
    EXPECT_EQ(sqNumsOf(result.out), (Numbers{"0", "1", "2", "3"})) << result.err;
    EXPECT_EQ(result.err, "");
}

TEST(Follow, HasTheStreamOfEachPacketWhateverCameBefore) {
    TempDir const folder;
    TempDir const other;
    auto const capture = [](std::string const& gocbRef, std::uint64_t at) {
        GooseMessage message;
        message.gocbRef = gocbRef;
        TrafficCapture made;
        made.addAt(at, gooseFrame(Ethernet(), message));
        return made.bytes();
    };
    folder.write("ring1.pcap", capture("gcbA", 0));
    auto const second = other.write("next.pcap", capture("gcbB", 1'000'000));
    auto const result = runAndThen("packets -F --limit 2 -f csv --columns gocbRef \"$1\"", 2,
                                   "cp \"$2\" \"$1\"/ring2.pcap", folder.path(), second);
    EXPECT_EQ(result.out, "gocbRef\ngcbA\ngcbB\n") << result.err;
}

TEST(Follow, ListsTheFileThatTakesTheName) {
    TempDir const folder;
    auto const path = folder.write("bay1.pcap", messages(0, 2));
    auto const second = folder.write("next.pcap", messages(7, 2));
    auto const result = runAndThen("packets -F --limit 4 -f csv --columns sqNum \"$1\"", 3,
                                   "mv \"$2\" \"$1\"", path, second);
    EXPECT_EQ(sqNumsOf(result.out), (Numbers{"0", "1", "7", "8"})) << result.err;
}

TEST(Follow, ListsTheSelectedPacketsAlone) {
    TempFile const file(messages(0, 9));
    auto const result = runCompanion({"packets", "-F", "--idle", "20ms", "--sqnum", "3", "-f",
                                      "csv", "--columns", "sqNum", file.path()});
    EXPECT_EQ(sqNumsOf(result.out), Numbers{"3"});
    auto const window = runCompanion({"packets", "-F", "--idle", "20ms", "--from", "+7ms", "-f",
                                      "csv", "--columns", "sqNum", file.path()});
    EXPECT_EQ(sqNumsOf(window.out), (Numbers{"7", "8"}));
    EXPECT_EQ(window.status, 0);
}

TEST(Follow, WritesATableWhoseRowsAreNotHeldBack) {
    TempDir const folder;
    auto const path = folder.write("bay1.pcap", messages(0, 2));
    auto const second = folder.write("next.pcap", messages(2, 1));
    auto const result = runAndThen("packets -F --limit 3 --columns sqNum \"$1\"", 3,
                                   "mv \"$2\" \"$1\"", path, second);
    EXPECT_EQ(linesOf(result.out).size(), 4U) << result.out;
}

TEST(FollowedCheck, TellsAFindingAsItHappens) {
    // Two messages are missing between the two captures; the second one is longer, so that the
    // finding is not at its end.
    TempDir const folder;
    TempDir const other;
    folder.write("ring1.pcap", messages(0, 4));
    auto const second = other.write("next.pcap", messages(6, 40));
    // The fault at the start is told first.
    auto const result =
        runAndThen("check -F --limit 2 --idle 5s -f csv --columns finding,lost,file \"$1\"", 2,
                   "cp \"$2\" \"$1\"/ring2.pcap", folder.path(), second);
    auto const lines = linesOf(result.out);
    ASSERT_EQ(lines.size(), 3U) << result.out << result.err;
    EXPECT_EQ(lines[0], "finding,lost,file");
    EXPECT_EQ(lines[2], "sqNumGap,2," + folder.file("ring2.pcap"));
}

TEST(FollowedCheck, GoesOnWhereARingRemovesAFile) {
    TempDir const folder;
    TempDir const other;
    folder.write("ring1.pcap", messages(0, 4));
    TrafficCapture capture;
    for (std::uint64_t i = 4; i < 60; ++i) {
        GooseMessage message;
        message.stNum = 1;
        message.sqNum = i < 20 ? i : i + 3;
        capture.addAt(i * 1'000'000, gooseFrame(Ethernet(), message));
    }
    auto const second = other.write("next.pcap", capture.bytes());
    auto const result =
        runAndThen("check -F --limit 3 --idle 5s -f csv --columns finding,lost,file \"$1\"", 2,
                   "rm \"$1\"/ring1.pcap; cp \"$2\" \"$1\"/ring2.pcap", folder.path(), second);
    auto const lines = linesOf(result.out);
    // The stream is a new one there: its fault at the start is told again.
    ASSERT_EQ(lines.size(), 4U) << result.out << result.err;
    EXPECT_EQ(lines[3], "sqNumGap,3," + folder.file("ring2.pcap"));
    EXPECT_EQ(result.err, "");
}

TEST(FollowedCheck, TellsWhatCheckTellsOfAWholeCapture) {
    TrafficCapture capture;
    for (std::uint64_t i = 0; i < 200; ++i) {
        GooseMessage message;
        message.stNum = i < 100 ? 1 : 3;
        message.sqNum = i < 100 ? i : i - 100;
        capture.addAt(i * 1'000'000, gooseFrame(Ethernet(), message));
    }
    TempFile const file(capture.bytes());
    for (std::vector<std::string> const& options : {std::vector<std::string>{},
                                                    {"--kind", "stateGap"},
                                                    {"--severity", "error"},
                                                    {"--gocbref", "none*"},
                                                    {"--from", "+150ms"}}) {
        std::vector<std::string> const common{"-f", "csv", "--columns",
                                              "time,finding,lost,position"};
        auto const all = joined(joined({"check"}, options), joined(common, {file.path()}));
        auto const followed = joined(joined({"check", "-F", "--idle", "20ms"}, options),
                                     joined(common, {file.path()}));
        auto const expected = runCompanion(all);
        auto const result = runCompanion(followed);
        EXPECT_EQ(result.out, expected.out) << testing::PrintToString(options);
        EXPECT_EQ(result.status, expected.status) << testing::PrintToString(options);
    }
}

TEST(FollowedCheck, GoesOnWhereFramesOfTwoFilesCannotBeCompared) {
    if (isSanitized) GTEST_SKIP() << "the sanitizer opens files of its own";
    TempDir const folder;
    folder.write("1.pcap", messages(0, 5));
    folder.write("2.pcap", messages(0, 5));
    // Too few files may be open to read again what both have, at some of these limits.
    int told = 0;
    for (int limit = 5; limit < 10; ++limit) {
        auto const result =
            run({"/bin/sh", "-c",
                 "ulimit -n " + std::to_string(limit) +
                     "; exec \"$0\" check -F --idle 20ms -f csv --columns finding \"$1\"",
                 companionPath(), folder.path()});
        if (result.err.find("2 files: ") != std::string::npos) {
            ++told;
            EXPECT_EQ(result.status, 2) << limit << result.err;
            EXPECT_EQ(result.out, "finding\n") << limit << result.err;
        }
        // A folder that cannot be listed has the files that it had.
        EXPECT_EQ(result.err.find("3 files: "), std::string::npos) << limit << result.err;
    }
    EXPECT_GT(told, 0);
}

TEST(FollowedCheck, FailsOnWhatCheckFailsOn) {
    TempDir const folder;
    auto const path = folder.write("bay1.pcap", messages(0, 3));
    EXPECT_EQ(runCompanion({"check", "-F", "--idle", "20ms", "--fail-on", "none", path}).status, 0);
    expectUsageError({"check", "-F", "--summary", path});
    expectUsageError({"check", "-F", "-"});
    EXPECT_EQ(runCompanion({"check", "-F", "--idle", "20ms", folder.file("x.pcap")}).status, 2);
}

TEST(Follow, SaysWhatWasNeverThere) {
    TempDir const folder;
    auto const result =
        runCompanion({"packets", "-F", "--idle", "20ms", "-f", "csv", folder.file("x.pcap")});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "tal-iec61850: " + folder.file("x.pcap") + ": no capture was there\n");
}

TEST(Follow, DoesNotGoWithWhatIsNotAppendedTo) {
    TempFile const file(messages(0, 1));
    expectUsageError({"packets", "-F", "-"});
    expectUsageError({"packets", "-F", "-o", "x.csv", file.path()});
    expectUsageError({"packets", "-F", "-w", "x.pcap", file.path()});
    expectUsageError({"packets", "-F", "-c", file.path()});
    expectUsageError({"packets", "--idle", "1s", file.path()});
    expectUsageError({"packets", "-F", "--idle", "soon", file.path()});
}

}  // namespace
}  // namespace TalIec61850Tools::FollowTest
