// Captures that come through standard input.

#include <gtest/gtest.h>

#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::StandardInputTest {
namespace {

/// The rows with the names of their files left out.
std::vector<Json> nameless(std::vector<Json> rows) {
    for (Json& row : rows) {
        row.erase("file");
    }
    return rows;
}

/// More than a pipe holds at once.
Bytes longTraffic() {
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 3000; ++i) {
        capture.add(i, 0, i % 7 == 0 ? oneGoose() : oneSv());
    }
    return capture.bytes();
}

TEST(StandardInput, GivesWhatTheFileWouldForEveryCommand) {
    TempFile const file(memberTraffic());
    for (std::string const command : {"streams", "packets", "show", "captures", "library judge"}) {
        auto const expected = rowsOf(joined(commandWords(command), {file.path()}));
        EXPECT_EQ(
            nameless(rowsOf(joined(commandWords(command), {"-"}), {.inputPiped = memberTraffic()})),
            nameless(expected));
        EXPECT_EQ(
            nameless(rowsOf(joined(commandWords(command), {"-"}), {.inputFile = file.path()})),
            nameless(expected));
    }
}

TEST(StandardInput, MayBeLongerThanAPipe) {
    TempFile const file(longTraffic());
    EXPECT_EQ(rowsOf({"streams", "-"}, {.inputPiped = longTraffic()}), streamsOf({file.path()}));
    EXPECT_EQ(rowsOf({"library", "judge", "-"}, {.inputPiped = longTraffic()}),
              rowsOf({"library", "judge", file.path()}));
}

TEST(StandardInput, IsCalledByItsSign) {
    for (std::string const command : {"packets", "show"}) {
        auto const rows = rowsOf({command, "-"}, {.inputPiped = smallCapture()});
        EXPECT_EQ(fieldOf(rows, "file"), std::vector<Json>(5, "-"));
    }
    auto const judged = rowsOf({"library", "judge", "-l", "-"}, {.inputPiped = smallCapture()});
    EXPECT_EQ(fieldOf(judged, "file"), std::vector<Json>(5, "-"));
}

TEST(StandardInput, GivenTwiceCountsOnce) {
    TempFile const file(smallCapture());
    auto const once = streamsOf({file.path()});
    EXPECT_EQ(rowsOf({"streams", "-", "-"}, {.inputPiped = smallCapture()}), once);
    EXPECT_EQ(rowsOf({"streams", "-", "-"}, {.inputFile = file.path()}), once);
    EXPECT_EQ(rowsOf({"streams", "-", file.path()}, {.inputFile = file.path()}), once);
    EXPECT_EQ(rowsOf({"streams", file.path(), "-"}, {.inputFile = file.path()}), once);
}

TEST(StandardInput, StandsBesideFilesInTheOrderGiven) {
    TempFile const file(CaptureBuilder().add(5, 0, oneSv("file")).bytes());
    Surroundings const piped{.inputPiped = CaptureBuilder().add(5, 0, oneSv("pipe")).bytes()};
    EXPECT_EQ(fieldOf(rowsOf({"packets", "-", file.path()}, piped), "svID"),
              (std::vector<Json>{"pipe", "file"}));
    EXPECT_EQ(fieldOf(rowsOf({"packets", file.path(), "-"}, piped), "svID"),
              (std::vector<Json>{"file", "pipe"}));
}

TEST(StandardInput, BeginsWhereItStands) {
    TempFile const file(concat({text("header\n"), smallCapture()}));
    auto const result = run({"/bin/sh", "-c",
                             "{ dd bs=7 count=1 status=none of=/dev/null; "
                             "exec \"$0\" streams -f json -; } < \"$1\"",
                             companionPath(), file.path()});
    EXPECT_EQ(result.err, "");
    TempFile const capture(smallCapture());
    EXPECT_EQ(jsonOf(result.out), streamsOf({capture.path()}));
}

TEST(StandardInput, ThatIsNoCaptureIsSaid) {
    auto const saidOf = [](Surroundings const& surroundings) {
        auto const result = runCompanion({"streams", "-q", "-"}, surroundings);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(linesOf(result.out).size(), 1U);
        return result.err;
    };
    EXPECT_EQ(saidOf({.inputPiped = Bytes()}), complaint("-: empty, no capture"));
    EXPECT_EQ(saidOf({.inputPiped = text("no capture")}), complaint("-: not a capture file"));
    EXPECT_EQ(saidOf({.inputFile = "/dev/null"}), complaint("-: empty, no capture"));
    EXPECT_EQ(saidOf({.inputPiped = Bytes{0x0A, 0x0D, 0x0D, 0x0A}}),
              complaint("-: the file ends inside its header"));
    EXPECT_EQ(saidOf({.inputFile = "/tmp"}), complaint("-: Is a directory"));
}

TEST(StandardInput, ThatIsDamagedIsSaid) {
    Bytes const whole = smallCapture();
    auto const result = runCompanion({"streams", "-f", "json", "-"},
                                     {.inputPiped = prefix(whole, whole.size() - 1)});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.starts_with("tal-iec61850: -: the file ends inside the record at "));
    EXPECT_EQ(jsonOf(result.out).size(), 2U);
}

TEST(StandardInput, ThatIsClosedOrHasNoRoomIsSaid) {
    TempFile const file(smallCapture());
    auto const closed = run({"/bin/sh", "-c", "exec \"$0\" streams -f json - \"$1\" <&-",
                             companionPath(), file.path()});
    EXPECT_EQ(closed.status, 2);
    EXPECT_EQ(closed.err, complaint("-: Bad file descriptor"));
    EXPECT_EQ(jsonOf(closed.out), streamsOf({file.path()}));
    auto const noRoom = runCompanion({"streams", "-"}, {.environment = {{"TMPDIR", "/nonexistent"}},
                                                        .inputPiped = smallCapture()});
    EXPECT_EQ(noRoom.status, 2);
    EXPECT_EQ(noRoom.err, complaint("-: no copy in /nonexistent: No such file or directory; TMPDIR "
                                    "may name another folder"));
}

TEST(StandardInput, IsNotReadUnlessItIsGiven) {
    TempFile const file(smallCapture());
    auto const result = run(
        {"/bin/sh", "-c", "\"$0\" streams \"$1\" > /dev/null; cat", companionPath(), file.path()},
        {.inputPiped = text("untouched")});
    EXPECT_EQ(result.out, "untouched");
}

TEST(StandardInput, IsNotMistakenForAnOutputThatIsClosed) {
    auto const result = runCompanion(
        {"streams", "-"}, {.output = StandardOutputIs::closed, .inputPiped = smallCapture()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint("cannot write standard output: Bad file descriptor"));
}

TEST(OutputFile, IsNotMistakenForAStandardErrorThatIsClosed) {
    TempDir const folder;
    auto const file = folder.write("1.pcap", smallCapture());
    auto const result =
        run({"/bin/sh", "-c", "exec \"$0\" streams -f csv -o \"$1\" missing.pcap \"$2\" 2>&-",
             companionPath(), folder.file("out"), file});
    EXPECT_EQ(result.status, 2);
    auto const octets = readFile(folder.file("out"));
    EXPECT_TRUE(std::string(octets.begin(), octets.end()).starts_with("protocol,"));
}

TEST(StandardInput, LeavesNoCopyBehind) {
    TempDir const folder;
    EXPECT_EQ(runCompanion({"streams", "-"}, {.environment = {{"TMPDIR", folder.path()}},
                                              .inputPiped = smallCapture()})
                  .status,
              0);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    EXPECT_EQ(
        runCompanion({"streams", "-", "-o", "/dev/full"},
                     {.environment = {{"TMPDIR", folder.path()}}, .inputPiped = smallCapture()})
            .status,
        2);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

}  // namespace
}  // namespace TalTest::StandardInputTest
