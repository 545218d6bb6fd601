// `samples --summary`: what the samples of streams are, and what tells so.

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/SampleTraffic.hpp"

namespace TalTest::SamplesSummaryTest {
namespace {

std::vector<Json> summariesOf(TempFile const& file, Arguments const& options = {}) {
    return rowsOf(joined({"samples", "--summary", file.path()}, options));
}

TEST(SamplesSummary, StatesTheEvidence) {
    WaveformSettings settings = declaredWave();
    settings.firstCount = 3000;
    settings.delay = 400'000;
    WaveformStream stream(settings);
    stream.send(6000).lose(2).send(100);
    TempFile const file(stream.captures()[0]);
    auto const rows = summariesOf(file);
    ASSERT_EQ(rows.size(), 1U);
    Json const& row = rows[0];
    EXPECT_EQ(row["svID"], "MU01");
    EXPECT_EQ(row["dataSize"], 64);
    EXPECT_EQ(row["layout"], "8 x (INT32, quality)");
    EXPECT_EQ(row["channels"], 8);
    EXPECT_EQ(row["layoutSource"], "inferred");
    EXPECT_GT(row["layoutAsdus"], 100);
    EXPECT_EQ(row["layoutTests"], Json::array({"int32Quality"}));
    EXPECT_EQ(row["layouts"], 1);
    EXPECT_EQ(row["rate"], 4000);
    EXPECT_EQ(row["rateSource"], "counter");
    EXPECT_EQ(row["smpRate"], *settings.smpRate);
    EXPECT_EQ(row["countedRate"], 4000);
    EXPECT_NEAR(row["measuredRate"].get<double>(), 4000, 0.5);
    EXPECT_EQ(row["rateContradicted"], false);
    EXPECT_EQ(row["timedBySmpCnt"], 6100);
    EXPECT_EQ(row["timedByFit"], 0);
    EXPECT_EQ(row["smpSynchs"], Json::array({2}));
    EXPECT_EQ(row["residualMinNs"], 400'000);
    EXPECT_EQ(row["residualP50Ns"], 0);
    EXPECT_EQ(row["residualMaxNs"], 0);
    EXPECT_NEAR(row["driftPpm"].get<double>(), 0, 0.001);
    EXPECT_EQ(row["received"], 6100);
    EXPECT_EQ(row["lost"], 2);
    EXPECT_EQ(row["late"], 0);
    EXPECT_EQ(row["repeated"], 0);
    EXPECT_EQ(row["copies"], 0);
    EXPECT_EQ(row["runs"], 1);
}

TEST(SamplesSummary, IsTheSameInEveryFormat) {
    WaveformSettings settings = declaredWave();
    WaveformStream stream(settings);
    stream.send(kWaveFrames).synchronize(0).send(kWaveFrames);
    TempFile const file(stream.captures()[0]);
    auto const csv = csvRows(runCompanion({"samples", "--summary", "-f", "csv", file.path()}).out);
    ASSERT_EQ(csv.size(), 1U);
    EXPECT_EQ(csv[0].at("smpSynchs"), "0 2");
    EXPECT_EQ(csv[0].at("layoutTests"), "int32Quality");
    EXPECT_EQ(csv[0].at("timedByFit"), "300");
    auto const rows = summariesOf(file);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["smpSynchs"], Json::array({0, 2}));
    EXPECT_EQ(rows[0].size(), csv[0].size());
    auto const table = runCompanion({"samples", "--summary", file.path()});
    EXPECT_EQ(summaryOf(table.out), "600 samples of 1 stream in 1 file");
    auto const cells = tableRows(table.out);
    ASSERT_EQ(cells.size(), 1U);
    EXPECT_EQ(cells[0][0], "MU01");
    EXPECT_EQ(cells[0][1], "8 x (INT32, quality)");
}

TEST(SamplesSummary, SaysWhichLayoutWasGiven) {
    WaveformStream stream(declaredWave());
    stream.send(kWaveFrames);
    TempFile const file(stream.captures()[0]);
    std::string layout = "int32,quality";
    for (int i = 1; i < 8; ++i) {
        layout += ",float32,quality";
    }
    auto const rows = summariesOf(file, {"--layout", layout, "--rate", "4000"});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0]["layoutSource"], "given");
    EXPECT_EQ(rows[0]["rateSource"], "given");
}

TEST(SamplesSummary, HasARowForEachStreamAndNoneForOthers) {
    WaveformSettings other = declaredWave();
    other.svID = "MU02";
    other.ethernet = Ethernet().to("01:0c:cd:04:00:02");
    WaveformStream first(declaredWave());
    WaveformStream second(other);
    first.send(kWaveFrames);
    second.send(kWaveFrames);
    TempFile const file(captureOf({&first, &second}));
    EXPECT_EQ(fieldOf(summariesOf(file), "svID"), (std::vector<Json>{"MU01", "MU02"}));
    EXPECT_EQ(fieldOf(summariesOf(file, {"--svid", "*2"}), "svID"), (std::vector<Json>{"MU02"}));
}

TEST(SamplesSummary, TakesNoChoiceOfSamples) {
    for (Arguments const& options :
         {Arguments{"--from", "+1s"}, Arguments{"--around", "+1s"}, Arguments{"--long"},
          Arguments{"--missing"}, Arguments{"--scaled"}, Arguments{"--scale", "2"},
          Arguments{"--channels", "1"}, Arguments{"--every", "2"}, Arguments{"--limit", "3"},
          Arguments{"--columns", "sampleTime"}}) {
        expectUsageError(joined({"samples", "--summary", "any.pcap"}, options));
    }
}

}  // namespace
}  // namespace TalTest::SamplesSummaryTest
