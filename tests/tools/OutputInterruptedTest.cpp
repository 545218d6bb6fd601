// Signals while -o FILE is written.

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest::OutputInterruptedTest {
namespace {

namespace fs = std::filesystem;

/// More complaints than a pipe holds: the program waits amidst them until they are read.
Arguments manyMissingFiles() {
    Arguments files;
    for (int i = 0; i < 1000; ++i) {
        files.push_back("/nonexistent/" + std::to_string(i) + std::string(100, 'x'));
    }
    return files;
}

std::size_t countEntries(std::string const& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

ProcessResult interrupted(int signal, std::string const& output, std::string const& capture) {
    return runCompanion(joined({"streams", "-o", output, capture}, manyMissingFiles()),
                        {.signalAtFirstError = signal});
}

TEST(OutputFile, LeavesNothingWhenASignalEndsTheProgram) {
    TempFile const capture(smallCapture());
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        TempDir const folder;
        EXPECT_EQ(interrupted(signal, folder.file("out"), capture.path()).status, 128 + signal);
        EXPECT_EQ(countEntries(folder.path()), 0U) << signal;
    }
}

TEST(OutputFile, LeavesNothingWhenTheTerminalQuitsTheProgram) {
    TempFile const capture(smallCapture());
    TempDir const folder;
    auto const result =
        run(joined({"/bin/sh", "-c", "ulimit -c 0; exec \"$0\" \"$@\"", companionPath(), "streams",
                    "-o", folder.file("out"), capture.path()},
                   manyMissingFiles()),
            Surroundings{.signalAtFirstError = SIGQUIT});
    EXPECT_EQ(result.status, 128 + SIGQUIT);
    EXPECT_EQ(countEntries(folder.path()), 0U);
}

TEST(OutputFile, LeavesNothingWhenItGrowsLargerThanItMay) {
    TempFile const capture(smallCapture());
    TempDir const folder;
    auto const result =
        run({"/bin/sh", "-c", "ulimit -c 0; ulimit -f 0; exec \"$0\" streams -o \"$1\" \"$2\"",
             companionPath(), folder.file("out"), capture.path()});
    EXPECT_NE(result.status, 0);
    EXPECT_EQ(countEntries(folder.path()), 0U);
}

TEST(OutputFile, StaysAsItWasWhenASignalEndsTheProgram) {
    TempFile const capture(smallCapture());
    TempDir const folder;
    auto const out = folder.write("out", text("old"));
    interrupted(SIGTERM, out, capture.path());
    EXPECT_EQ(readFile(out), text("old"));
    EXPECT_EQ(countEntries(folder.path()), 1U);
}

TEST(OutputFile, IsFinishedWhereTheSignalIsIgnored) {
    TempFile const capture(smallCapture());
    TempDir const folder;
    auto const result =
        run(joined({"/bin/sh", "-c", "trap '' HUP; exec \"$0\" \"$@\"", companionPath(), "streams",
                    "-o", folder.file("out"), capture.path()},
                   manyMissingFiles()),
            Surroundings{.signalAtFirstError = SIGHUP});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(linesOf(result.err).size(), 1000U);
    auto const written = readFile(folder.file("out"));
    EXPECT_EQ(std::string(written.begin(), written.end()),
              runCompanion({"streams", capture.path()}).out);
    EXPECT_EQ(countEntries(folder.path()), 1U);
}

}  // namespace
}  // namespace TalTest::OutputInterruptedTest
