// The shared object itself, executed as a program.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <fstream>
#include <string>

#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/Process.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"

namespace TalTest::ToolTest {
namespace {

/// Runs the tool with a status file of the test's own in the place of the kernel's.
ProcessResult runTool(std::vector<std::string> arguments, std::string const& vmRssLine) {
    std::string const content = "Name:\ttool\n" + vmRssLine + "\nThreads:\t1\n";
    TempFile const status(Bytes(content.begin(), content.end()));
    arguments.insert(arguments.begin(), TAL_SHARED_OBJECT);
    return run(arguments, {{"LD_PRELOAD", TAL_STATUS_SHIM},
                           {"TAL_STATUS_FILE", status.path()},
                           {"ASAN_OPTIONS", "verify_asan_link_order=0"}});
}

constexpr auto kNumberLast = "VmRSS: 2048";
constexpr auto kUnitLast = "VmRSS:\t    2048 kB";

TempFile capture(std::size_t gooseFrames, std::size_t svFrames, std::size_t otherFrames) {
    CaptureBuilder builder(CaptureVariant::microLittle);
    for (std::size_t i = 0; i < gooseFrames; ++i) {
        builder.add(1, 0, gooseFrame({}, {}));
    }
    Ethernet link;
    link.destination = "01:0c:cd:04:00:07";
    for (std::size_t i = 0; i < svFrames; ++i) {
        builder.add(1, 0, svFrame(link, {}));
    }
    for (std::size_t i = 0; i < otherFrames; ++i) {
        builder.add(1, 0, ethernetFrame({}, 0x0806, Bytes(46)));
    }
    return TempFile(builder.bytes());
}

std::size_t count(std::string const& text, std::string const& part) {
    std::size_t found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++found;
    }
    return found;
}

TEST(Tool, WithoutArgumentPrintsTheUsageAndEndsWith1) {
    auto const result = run({TAL_SHARED_OBJECT});
    std::string const name = TAL_SHARED_OBJECT;
    EXPECT_EQ(result.out, "Usage: " + name + " <pcap_file>\nExample: " + name + " test.pcap\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 1);
}

TEST(Tool, ReportsEverythingWhereTheStatusLineEndsInItsFigure) {
    TempFile const file = capture(3, 2, 0);
    auto const result = runTool({file.path()}, kNumberLast);
    auto const report = result.out.find("Parsing took ");
    ASSERT_NE(report, std::string::npos) << result.out;
    auto const memory = result.out.find(" seconds\nmem usage: ", report);
    ASSERT_NE(memory, std::string::npos) << result.out;
    EXPECT_EQ(result.out.substr(memory),
              " seconds\nmem usage: 2 MB\n\n"
              "sv: 01:0c:cd:04:00:07 cnt: 2\n"
              "goose: 01:0c:cd:01:00:01 cnt: 3\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Tool, EndsByTheUncaughtExceptionWhereTheStatusLineEndsInKb) {
    TempFile const file = capture(1, 1, 0);
    auto const result = runTool({file.path()}, kUnitLast);
    EXPECT_TRUE(result.out.ends_with(" seconds\nmem usage: ")) << result.out;
    EXPECT_NE(result.err.find("std::invalid_argument"), std::string::npos) << result.err;
    EXPECT_EQ(result.status, 128 + SIGABRT);
}

TEST(Tool, EndsOnThisKernelAsItsOwnStatusLineMakesIt) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line) && !line.starts_with("VmRSS:")) {
    }
    TempFile const file = capture(1, 0, 0);
    auto const result = run({TAL_SHARED_OBJECT, file.path()});
    bool const endsInUnit = line.ends_with(" kB");
    EXPECT_EQ(result.status, endsInUnit ? 128 + SIGABRT : 0);
    EXPECT_EQ(result.out.ends_with("mem usage: "), endsInUnit) << result.out;
}

TEST(Tool, GetsTheMemoryLabelThroughAPipeBeforeItEnds) {
    TempFile const file = capture(1, 0, 0);
    TempFile const status(text(std::string(kUnitLast) + "\n"));
    auto const result = run({"/bin/sh", "-c", "LD_PRELOAD=$SHIM \"$1\" \"$2\" | cat", "sh",
                             TAL_SHARED_OBJECT, file.path()},
                            {{"SHIM", TAL_STATUS_SHIM},
                             {"TAL_STATUS_FILE", status.path()},
                             {"ASAN_OPTIONS", "verify_asan_link_order=0"}});
    EXPECT_TRUE(result.out.ends_with("mem usage: ")) << result.out;
}

TEST(Tool, PrintsZeroWhereTheStatusFileHasNoSuchLine) {
    TempFile const file = capture(0, 0, 1);
    auto const result = runTool({file.path()}, "VmSize: 4096");
    EXPECT_TRUE(result.out.ends_with("mem usage: 0 B\n\n")) << result.out;
    EXPECT_EQ(result.status, 0);
}

TEST(Tool, ReportsAnUnreadableFileAndEndsFine) {
    auto const result = runTool({"/nonexistent/x.pcap"}, kNumberLast);
    EXPECT_EQ(result.err, "Error opening file: /nonexistent/x.pcap\n");
    EXPECT_TRUE(result.out.starts_with("Parsing took ")) << result.out;
    EXPECT_TRUE(result.out.ends_with(" seconds\nmem usage: 2 MB\n\n")) << result.out;
    EXPECT_EQ(result.status, 0);
}

TEST(Tool, ReportsAFileOfAnotherFormatAndEndsFine) {
    TempFile const file(text("no capture at all"));
    auto const result = runTool({file.path()}, kNumberLast);
    EXPECT_EQ(result.err, "Invalid PCAP file format\n");
    EXPECT_EQ(result.status, 0);
}

TEST(Tool, Prints2500RecordsAsThreeProgressLinesAndTheLast) {
    TempFile const file = capture(2500, 0, 0);
    auto const result = runTool({file.path()}, kNumberLast);
    EXPECT_EQ(count(result.out, "Progress: "), 4U) << result.out;
    EXPECT_NE(result.out.find("\nProgress: 100%\nParsing took "), std::string::npos) << result.out;
    EXPECT_EQ(count(result.out, "\r"), 0U);
}

TEST(Tool, PrintsProgressInSixSignificantDigits) {
    TempFile const file = capture(0, 0, 1);
    auto const result = runTool({file.path()}, kNumberLast);
    // 24 octets of header, 16 of record header, 60 of frame.
    EXPECT_TRUE(result.out.starts_with("Progress: 24%\nProgress: 100%\n")) << result.out;
}

TEST(Tool, PrintsNoStreamLinesForACaptureWithoutSuchFrames) {
    TempFile const file = capture(0, 0, 5);
    auto const result = runTool({file.path()}, kNumberLast);
    EXPECT_EQ(count(result.out, "cnt: "), 0U) << result.out;
    EXPECT_EQ(result.status, 0);
}

TEST(Tool, IgnoresArgumentsBehindTheFirst) {
    TempFile const file = capture(1, 0, 0);
    auto const result = runTool({file.path(), "/nonexistent", "--help"}, kNumberLast);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(count(result.out, "goose: "), 1U);
    EXPECT_EQ(result.status, 0);
}

}  // namespace
}  // namespace TalTest::ToolTest
