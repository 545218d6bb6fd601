#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionProcess.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/ProgressBar.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {
namespace {

using namespace TalTest;

TEST(ProgressLine, ShowsNameBarAndPercentage) {
    EXPECT_EQ(progressLine("bay1.pcap", 0.0, 80), "bay1.pcap [....................]   0%");
    EXPECT_EQ(progressLine("bay1.pcap", 0.5, 80), "bay1.pcap [##########..........]  50%");
    EXPECT_EQ(progressLine("bay1.pcap", 1.0, 80), "bay1.pcap [####################] 100%");
}

TEST(ProgressLine, IsFullOnlyAtTheEnd) {
    EXPECT_EQ(progressLine("bay1.pcap", 0.9999, 80), "bay1.pcap [###################.]  99%");
}

TEST(ProgressLine, LeavesTheBarOutOfANarrowTerminal) {
    EXPECT_EQ(progressLine("bay1.pcap", 0.5, 40), "bay1.pcap  50%");
}

TEST(ProgressLine, NeverFillsTheLine) {
    std::string const name(200, 'n');
    for (std::size_t columns = 7; columns < 250; ++columns) {
        EXPECT_LT(countColumns(progressLine(name, 1.0, columns)), columns);
    }
}

TEST(ProgressLine, TakesFractionsOutsideOfZeroToOneForTheNearest) {
    EXPECT_EQ(progressLine("a", -1.0, 80), progressLine("a", 0.0, 80));
    EXPECT_EQ(progressLine("a", 7.5, 80), progressLine("a", 1.0, 80));
}

Bytes longCapture() {
    CaptureBuilder capture;
    for (std::uint32_t i = 0; i < 2500; ++i) {
        capture.add(i, 0, oneSv());
    }
    return capture.bytes();
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
    auto const shown = overwritten(result.err);
    ASSERT_EQ(shown.size(), 5U) << result.err;
    EXPECT_NE(shown[0].find("bay1.pcap [....................]   0%"), std::string::npos);
    EXPECT_NE(shown[1].find("bay1.pcap [########............]  40%"), std::string::npos);
    EXPECT_NE(shown[2].find("bay1.pcap [################....]  80%"), std::string::npos);
    EXPECT_NE(shown[3].find("bay1.pcap [####################] 100%"), std::string::npos);
    EXPECT_TRUE(isBlank(shown[4]));
    EXPECT_GE(shown[4].size(), shown[3].size());
    EXPECT_EQ(result.err.back(), '\r');
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
    TempFile const capture(smallCapture());
    auto const result =
        runCompanion({"streams", capture.path(), "missing"}, {.terminalColumns = 80});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.ends_with(" \rtal-iec61850: missing: No such file or directory\r\n"))
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
}  // namespace TalIec61850Tools
