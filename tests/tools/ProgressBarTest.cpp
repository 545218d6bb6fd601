#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/ProgressBar.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools::ProgressBarTest {
namespace {

using namespace TalTest;

using std::chrono::seconds;

/// Some of a hundred octets, at a time when nothing can be said of the rate yet.
Progress done(std::uint64_t octets) {
    return {.doneOctets = octets, .totalOctets = 100, .elapsed = {}};
}

TEST(ProgressLine, ShowsNameBarAndPercentage) {
    EXPECT_EQ(progressLine("bay1.pcap", done(0), 80), "bay1.pcap [....................]   0%");
    EXPECT_EQ(progressLine("bay1.pcap", done(50), 80), "bay1.pcap [##########..........]  50%");
    EXPECT_EQ(progressLine("bay1.pcap", done(100), 80), "bay1.pcap [####################] 100%");
}

TEST(ProgressLine, ShowsRateAndTimeLeftOnceTheyCanBeTold) {
    Progress progress{
        .doneOctets = 500'000'000, .totalOctets = 2'000'000'000, .elapsed = seconds(2)};
    EXPECT_EQ(progressLine("a.pcap", progress, 100),
              "a.pcap [#####...............]  25% 250.0 MB/s, 0:06 left");
    progress.elapsed = seconds(4000);
    EXPECT_EQ(progressLine("a.pcap", progress, 100),
              "a.pcap [#####...............]  25% 0.1 MB/s, 3:20:00 left");
}

TEST(ProgressLine, TellsNoTimeLeftBeyondAnyPatience) {
    Progress const progress{.doneOctets = 1, .totalOctets = 2'000'000'000, .elapsed = seconds(100)};
    EXPECT_EQ(progressLine("a.pcap", progress, 100), "a.pcap [....................]   0% 0.0 MB/s");
}

TEST(ProgressLine, RoundsTheTimeLeftUp) {
    Progress const progress{.doneOctets = 3, .totalOctets = 4, .elapsed = seconds(1)};
    EXPECT_EQ(progress.timeLeft(), seconds(1));
    EXPECT_EQ(progress.rate(), 3.0);
}

TEST(ProgressLine, IsFullOnlyAtTheEnd) {
    Progress const progress{.doneOctets = 9999, .totalOctets = 10'000, .elapsed = {}};
    EXPECT_EQ(progressLine("bay1.pcap", progress, 80), "bay1.pcap [###################.]  99%");
}

TEST(ProgressLine, LeavesRateThenBarOutOfANarrowTerminal) {
    Progress progress = done(50);
    progress.elapsed = seconds(1);
    EXPECT_EQ(progressLine("bay1.pcap", progress, 60), "bay1.pcap [##########..........]  50%");
    EXPECT_EQ(progressLine("bay1.pcap", progress, 40), "bay1.pcap  50%");
}

TEST(ProgressLine, NeverFillsTheLine) {
    std::string const name(200, 'n');
    Progress progress = done(100);
    for (int const second : {0, 1, 100'000}) {
        progress.elapsed = seconds(second);
        for (std::size_t columns = 7; columns < 250; ++columns) {
            EXPECT_LT(countColumns(progressLine(name, progress, columns)), columns);
        }
    }
}

TEST(ProgressLine, TakesMoreThanAllForAllAndNothingForNothing) {
    EXPECT_EQ(progressLine("a", done(700), 80), progressLine("a", done(100), 80));
    EXPECT_EQ(Progress().fraction(), 0.0);
    EXPECT_EQ(Progress().rate(), std::nullopt);
    EXPECT_EQ(Progress().timeLeft(), std::nullopt);
}

Bytes const& longCapture() {
    static Bytes const made = [] {
        Bytes const frame = oneSv();
        CaptureBuilder capture;
        for (std::uint32_t i = 0; i < 40'000; ++i) {
            capture.add(i, 0, frame);
        }
        return capture.bytes();
    }();
    return made;
}

/// With the start of one record more.
Bytes damaged(Bytes capture) {
    capture.insert(capture.end(), {1, 2});
    return capture;
}

/// The texts that follow one another on one line of a terminal.
std::vector<std::string> overwritten(std::string text) {
    std::replace(text.begin(), text.end(), '\r', '\n');
    auto lines = linesOf(text);
    std::erase(lines, "");
    return lines;
}

bool isBlank(std::string const& line) { return line.find_first_not_of(' ') == std::string::npos; }

TEST(Progress, IsShownOnATerminalAndErased) {
    TempFile const capture(longCapture(), "bay1.pcap");
    auto const result =
        runCompanion({"streams", "-f", "json", capture.path()}, {.terminalColumns = 120});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(jsonOf(result.out), streamsOf({capture.path()}));
    std::size_t const begun = result.err.find("bay1.pcap [##");
    EXPECT_NE(begun, std::string::npos) << result.err;
    EXPECT_GT(result.err.find("bay1.pcap [####################] 100%"), begun);
    auto const shown = overwritten(result.err);
    ASSERT_GE(shown.size(), 3U) << result.err;
    EXPECT_TRUE(isBlank(shown.back()));
    EXPECT_GE(shown.back().size(), shown[shown.size() - 2].size());
    EXPECT_EQ(result.err.back(), '\r');
}

TEST(Progress, GoesOverAllFiles) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", longCapture());
    auto const second = folder.write("2.pcap", longCapture());
    auto const result = runCompanion({"streams", first, second}, {.terminalColumns = 120});
    EXPECT_NE(result.err.find("2 files [####################] 100%"), std::string::npos);
    std::size_t const last = result.err.find("2 files [####################] 100%");
    EXPECT_LT(result.err.find("2 files [#"), last) << "drawn once alone";
}

TEST(Progress, FitsIntoTheTerminal) {
    TempFile const capture(longCapture(), std::string(150, 'n') + ".pcap");
    for (int const columns : {0, 1, 5, 20, 40, 80, 100}) {
        auto const result = runCompanion({"streams", capture.path()}, {.terminalColumns = columns});
        for (auto const& line : overwritten(result.err)) {
            // Where there is no room even for the percentage, that is still shown.
            EXPECT_LT(line.size(),
                      columns == 0 ? 80U : std::max(7U, static_cast<unsigned>(columns)));
        }
    }
}

TEST(Progress, IsErasedBeforeAComplaint) {
    TempDir const folder;
    auto const cut = folder.write("cut.pcap", damaged(longCapture()));
    auto const result = runCompanion({"streams", cut}, {.terminalColumns = 200});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find(" \rtal-iec61850: " + cut + ": the file ends inside the header of "),
              std::string::npos)
        << result.err;
}

TEST(Progress, EscapesTheFileName) {
    TempFile const capture(smallCapture(), "a\x1b[2J\n.pcap");
    auto const result = runCompanion({"streams", capture.path()}, {.terminalColumns = 120});
    EXPECT_NE(result.err.find(R"(a\x1b[2J\n.pcap [)"), std::string::npos);
    EXPECT_EQ(result.err.find('\x1b'), std::string::npos);
}

TEST(Progress, IsNotShownWhenStandardErrorIsNoTerminal) {
    TempFile const capture(longCapture());
    EXPECT_EQ(runCompanion({"streams", capture.path()}).err, "");
}

TEST(Progress, IsNotShownWhenItIsNotWanted) {
    TempFile const capture(longCapture());
    for (auto const* option : {"-q", "--quiet"}) {
        EXPECT_EQ(runCompanion({"streams", option, capture.path()}, {.terminalColumns = 80}).err,
                  "");
    }
}

}  // namespace
}  // namespace TalIec61850Tools::ProgressBarTest
