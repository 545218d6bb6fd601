#include <gtest/gtest.h>

#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::StreamsFailuresTest {
namespace {

using Arguments = std::vector<std::string>;

TEST(StreamsBadFile, IsNamedAndTheOthersAreStillListed) {
    TempDir const folder;
    auto const good = folder.write("good.pcap", smallCapture());
    auto const bad = folder.write("bad.pcap", text("no capture"));
    auto const result = runCompanion({"streams", "-f", "json", bad, good});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(bad + ": not a capture file"));
    EXPECT_EQ(jsonOf(result.out), streamsOf({good}));
}

TEST(StreamsBadFile, HasOneLineEachInTheOrderGiven) {
    TempDir const folder;
    auto const next = folder.write("next.pcapng", {0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0, 0x4D,
                                                   0x3C, 0x2B, 0x1A, 0x01, 0, 0, 0});
    auto const missing = folder.file("missing.pcap");
    auto const result = runCompanion({"streams", "-q", next, missing, "/dev/null", missing});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(missing + ": No such file or directory") +
                              complaint("/dev/null: not a regular file") +
                              complaint(next + ": the file ends inside its header"));
    EXPECT_EQ(linesOf(result.out).size(), 1U);
}

TEST(StreamsBadFile, MayHaveANameThatWouldUpsetATerminal) {
    auto const result = runCompanion({"streams", "a\n\x1b[2J\xff"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(R"(a\n\x1b[2J\xff: No such file or directory)"));
}

TEST(StreamsBadFile, MayHaveNoNameAtAll) {
    auto const result = runCompanion({"streams", ""});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint("'': No such file or directory"));
}

TEST(Streams, ReadFilesWhateverTheirNames) {
    TempDir const folder;
    for (auto const* name :
         {"a b", "[a,b]", "{}", "%%", "-f", "+", "streams", "\n", "\xff", "a\"b", "@x", "#"}) {
        auto const path = folder.write(name, smallCapture());
        EXPECT_EQ(streamsOf({path}).size(), 2U) << name;
    }
}

TEST(Streams, ReadFilesInTheWorkingFolderWhateverTheirNames) {
    TempDir const folder;
    auto const before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    for (auto const* name : {"[a,b]", "[]", "{}", "%%", "++", "+", "streams", "-1"}) {
        auto const path = folder.write(name, smallCapture());
        EXPECT_EQ(streamsOf({name}).size(), 2U) << name;
    }
    folder.write("--format", smallCapture());
    EXPECT_EQ(streamsOf({"--", "--format"}).size(), 2U);
    std::filesystem::current_path(before);
}

/// Runs the program with about 100 MB of address space.
ProcessResult runInLittleMemory(Arguments const& arguments) {
    Arguments command = {"/bin/sh", "-c", "ulimit -v 100000 && exec \"$@\"", "sh", companionPath()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command);
}

TEST(Streams, SayThatMemoryIsLacking) {
    if (runInLittleMemory({"--version"}).status != 0) {
        GTEST_SKIP() << "built like this, the program does not even start in so little memory";
    }
    constexpr std::uint32_t claimed = 200U << 20U;
    TempFile const capture(CaptureBuilder().addClaiming(1, 0, claimed, {}).bytes());
    std::filesystem::resize_file(capture.path(), claimed + 40);  // sparse, it takes no room
    auto const result = runInLittleMemory({"library", "streams", capture.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint("not enough memory"));
    EXPECT_EQ(result.out, "");
}

TEST(StreamsOutput, ThatDoesNotFitIsReported) {
    TempFile const capture(smallCapture());
    Surroundings const full{.output = StandardOutputIs::full};
    for (Arguments const& arguments : {Arguments{"streams", capture.path()},
                                       {"streams", "-f", "csv", capture.path()},
                                       {"streams", "-f", "json", capture.path()},
                                       {"--help"},
                                       {"streams", "--help"},
                                       {"--version"}}) {
        auto const result = runCompanion(arguments, full);
        EXPECT_EQ(result.status, 2) << arguments.back();
        EXPECT_EQ(result.err, complaint("cannot write standard output: No space left on device"));
    }
}

TEST(StreamsOutput, ThatIsLargerThanAnyBufferIsReportedOnce) {
    CaptureBuilder capture;
    for (int i = 0; i < 3000; ++i) {
        capture.add(1, 0, oneSv("MU" + std::to_string(i)));
    }
    TempFile const file(capture.bytes());
    auto const result = runCompanion({"streams", file.path()}, {.output = StandardOutputIs::full});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint("cannot write standard output: No space left on device"));
}

TEST(StreamsOutput, ThatIsClosedIsReported) {
    TempFile const capture(smallCapture());
    auto const result =
        runCompanion({"streams", capture.path()}, {.output = StandardOutputIs::closed});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint("cannot write standard output: Bad file descriptor"));
}

TEST(StreamsOutput, GoesNowhereNearACaptureWhenItIsClosed) {
    TempFile const capture(smallCapture());
    runCompanion({"streams", capture.path()}, {.output = StandardOutputIs::closed});
    EXPECT_EQ(readFile(capture.path()), smallCapture());
}

}  // namespace
}  // namespace TalTest::StreamsFailuresTest
