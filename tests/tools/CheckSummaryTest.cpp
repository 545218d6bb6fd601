// `check --summary`: streams in figures.

#include <gtest/gtest.h>

#include "tools/CheckTraffic.hpp"

namespace TalTest::CheckSummaryTest {
namespace {

TEST(CheckSummary, HasARowForEachStreamInTheOrderOfStreams) {
    auto station = troubledStation();
    StationFiles const files(station);
    auto const rows = checkRows(files, {"--summary"});
    auto const streams = rowsOf(joined({"streams"}, files.paths()));
    ASSERT_EQ(rows.size(), 3U);
    for (auto const* name :
         {"protocol", "source", "destination", "vlanId", "appId", "svID", "gocbRef", "packets",
          "firstTimeNs", "lastTime", "nominalRate", "simulated"}) {
        EXPECT_EQ(fieldOf(rows, name), fieldOf(streams, name)) << name;
    }
}

TEST(CheckSummary, HasTheFiguresOfTheWholeCapturesAndTheFindingsThatAreSelected) {
    auto station = troubledStation();
    StationFiles const files(station);
    auto const rows = checkRows(files, {"--summary"});
    Json const& relay = rows.at(0);
    EXPECT_EQ(relay["gocbRef"], "RELAY1LD0/LLN0$GO$gcb1");
    EXPECT_EQ(relay["lost"], 1);
    EXPECT_EQ(relay["states"], 1);
    EXPECT_EQ(relay["timeAllowedtoLiveMargin"], 2.5);
    EXPECT_EQ(relay["largestGapNs"], 200'000'000);
    EXPECT_EQ(relay["largestGapLost"], 1);
    EXPECT_EQ(relay["jitterP99Ns"], nullptr);
    EXPECT_EQ(relay["smpSynch"], nullptr);
    EXPECT_EQ(relay["errors"], 1);
    Json const& unit = rows.at(1);
    EXPECT_EQ(unit["svID"], "MU01");
    EXPECT_EQ(unit["packets"], 7995);
    EXPECT_EQ(unit["measuredRate"], 4000);
    EXPECT_EQ(unit["lost"], 5);
    EXPECT_EQ(unit["late"], 0);
    EXPECT_EQ(unit["repeated"], 0);
    EXPECT_EQ(unit["restarts"], 0);
    EXPECT_EQ(unit["largestGapNs"], 1'500'000);
    EXPECT_EQ(unit["largestGapLost"], 5);
    EXPECT_EQ(unit["jitterP50Ns"], 0);
    EXPECT_EQ(unit["jitterMaxNs"], 0);
    EXPECT_EQ(unit["smpSynch"], 0);
    EXPECT_EQ(unit["states"], nullptr);
    EXPECT_EQ(unit["timeAllowedtoLiveMargin"], nullptr);
    EXPECT_EQ(unit["errors"], 1);
    EXPECT_EQ(unit["warnings"], 1);
    EXPECT_EQ(unit["notes"], 0);
    EXPECT_EQ(rows.at(2)["repeated"], 1);
    auto const some = checkRows(files, {"--summary", "--severity", "error", "--svid", "MU01"});
    ASSERT_EQ(some.size(), 1U);
    EXPECT_EQ(some[0]["lost"], 5);
    EXPECT_EQ(some[0]["errors"], 1);
    EXPECT_EQ(some[0]["warnings"], 0);
    auto const late = checkRows(files, {"--summary", "--from", "+1.9s", "--limit", "2"});
    ASSERT_EQ(late.size(), 2U);
    EXPECT_EQ(late[1]["lost"], 5);
    EXPECT_EQ(late[1]["errors"], 0);
}

TEST(CheckSummary, IsATableOfWhatMattersMost) {
    auto station = troubledStation();
    StationFiles const files(station);
    auto const text = runCompanion(files.check({"--summary"})).out;
    auto const rows = tableRows(text);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[1][0], "SV");
    EXPECT_EQ(rows[1][1], "MU01");
    EXPECT_NE(text.find("1.5 ms"), std::string::npos);
    EXPECT_EQ(summaryOf(text), "4 findings: 3 errors, 1 warning, 0 notes, in 3 streams of 1 file");
    EXPECT_EQ(csvRows(runCompanion(files.check({"--summary", "-f", "csv"})).out).size(), 3U);
}

}  // namespace
}  // namespace TalTest::CheckSummaryTest
