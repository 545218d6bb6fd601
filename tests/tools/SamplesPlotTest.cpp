// `samples --plot`: what is drawn, how wide, and in which characters.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::SamplesPlotTest {
namespace {

using TalIec61850Tools::countColumns;

Surroundings surroundingsOf(ExtraEnvironment const& environment) {
    ExtraEnvironment all = {{"LC_ALL", "C"}, {"COLUMNS", ""}, {"NO_COLOR", ""}};
    all.insert(all.end(), environment.begin(), environment.end());
    return {.environment = all};
}

/// What `samples --plot` draws, line by line; it must succeed without a complaint.
std::vector<std::string> plotOf(Arguments const& arguments,
                                Surroundings const& surroundings = surroundingsOf({})) {
    auto const result = runCompanion(joined({"samples", "--plot"}, arguments), surroundings);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    std::string text = result.out;
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return linesOf(text);
}

std::size_t widestOf(std::vector<std::string> const& lines) {
    std::size_t widest = 0;
    for (auto const& line : lines) {
        widest = std::max(widest, countColumns(line));
    }
    return widest;
}

bool isAscii(std::vector<std::string> const& lines) {
    return std::all_of(lines.begin(), lines.end(), [](std::string const& line) {
        return std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c < 0x7F; });
    });
}

/// A second of 9-2LE.
TempFile secondOfSamples() {
    return TempFile(WaveformStream(declaredWave()).send(4000).captures().at(0));
}

TEST(SamplesPlot, HasAHeadTwoLinesForEachChannelAndAnAxis) {
    auto const file = secondOfSamples();
    auto const lines = plotOf({"--channels", "1,5", "--scaled", file.path()});
    ASSERT_EQ(lines.size(), 11U);
    EXPECT_EQ(lines[0].substr(0, 25), "MU01  02:00:00:00:00:01  ");
    EXPECT_NE(lines[0].find("999.75 ms from 2023-11-14T22:13:20.000000000Z"), std::string::npos);
    EXPECT_EQ(lines[1], "  4,000 samples  0 missing");
    EXPECT_EQ(lines[2].substr(0, 3), "Ia ");
    EXPECT_EQ(lines[3].substr(0, 3), "A  ");
    EXPECT_EQ(lines[4].substr(0, 12), "bad quality ");
    EXPECT_EQ(lines[5].substr(0, 3), "Ua ");
    EXPECT_EQ(lines[6].substr(0, 3), "V  ");
    EXPECT_EQ(lines[7].substr(0, 12), "bad quality ");
    EXPECT_NE(lines[8].find("|22:13:20.4"), std::string::npos);
    EXPECT_EQ(lines[9], "");
    EXPECT_EQ(lines[10], "2 channels of 1 stream in 1 file");
}

TEST(SamplesPlot, IsAsWideAsTheTerminalOrAsColumnsSaysOrEighty) {
    auto const file = secondOfSamples();
    EXPECT_EQ(widestOf(plotOf({file.path()})), 80U);
    EXPECT_EQ(widestOf(plotOf({file.path()}, surroundingsOf({{"COLUMNS", "120"}}))), 120U);
    EXPECT_EQ(widestOf(plotOf({file.path()}, surroundingsOf({{"COLUMNS", "wide"}}))), 80U);
    EXPECT_EQ(widestOf(plotOf({file.path()}, surroundingsOf({{"COLUMNS", "1"}}))), 20U);
    auto terminal = surroundingsOf({{"TERM", "dumb"}, {"COLUMNS", "50"}});
    terminal.output = StandardOutputIs::terminal;
    terminal.outputColumns = 97;
    EXPECT_EQ(widestOf(plotOf({file.path()}, terminal)), 97U);
}

TEST(SamplesPlot, IsOfAsciiWhereTheLocaleHasNoUtf8) {
    auto const file = secondOfSamples();
    EXPECT_TRUE(isAscii(plotOf({file.path()})));
    EXPECT_FALSE(isAscii(plotOf({file.path()}, surroundingsOf({{"LC_ALL", "C.UTF-8"}}))));
}

TEST(SamplesPlot, HasColoursWhereTheyAreWanted) {
    auto const file = secondOfSamples();
    EXPECT_TRUE(isAscii(plotOf({"--color", "never", file.path()})));
    auto const coloured = plotOf({"--color", "always", file.path()});
    EXPECT_EQ(coloured[0].substr(0, 12), "\x1b[1mMU01\x1b[0m");
}

TEST(SamplesPlot, CannotBeCombinedWithOptionsOfRows) {
    auto const file = secondOfSamples();
    for (Arguments const& option : std::vector<Arguments>{{"--format", "json"},
                                                          {"-f", "table"},
                                                          {"--columns", "time"},
                                                          {"--wide"},
                                                          {"--long"},
                                                          {"--missing"},
                                                          {"--every", "2"},
                                                          {"--limit", "3"}}) {
        expectUsageError(joined({"samples", "--plot", file.path()}, option));
    }
    auto const result = runCompanion({"samples", "--plot", "--every", "2", file.path()});
    EXPECT_EQ(result.err, complaint("--plot writes no rows: it cannot be combined with --every"));
}

TEST(SamplesPlot, HasTheWindowAsItsAxis) {
    auto const file = secondOfSamples();
    auto const lines = plotOf({"--from", "+0.2s", "--to", "+0.6s", "--channels", "1", file.path()});
    EXPECT_NE(lines.at(5).find("|22:13:20.3"), std::string::npos);
    EXPECT_NE(lines[1].find("1,600 samples"), std::string::npos);
    // One that is longer than the captures is not drawn.
    EXPECT_EQ(plotOf({"--from", "1980-01-01", "--to", "2100-01-01", file.path()}),
              plotOf({file.path()}));
}

TEST(SamplesPlot, SaysWhereThereIsNothing) {
    auto const file = secondOfSamples();
    auto const result = runCompanion({"samples", "--plot", "--from", "2030-01-01", file.path()},
                                     surroundingsOf({}));
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.err.find("no sample in the window"), std::string::npos);
    EXPECT_EQ(result.out, "\n0 channels of 0 streams in 1 file; 1 stream without samples\n");
    TempFile const empty(captureOf(std::vector<WaveformStream const*>()));
    EXPECT_EQ(runCompanion({"samples", "--plot", "-q", empty.path()}).out, "");
    expectUsageError({"samples", "--plot", "--channels", "9", file.path()});
}

TEST(SamplesPlot, ShowsMissingSamplesAndBadQuality) {
    WaveformStream stream(declaredWave());
    stream.send(1000).lose(400).send(1000);
    TempFile const file(stream.captures().at(0));
    auto const result =
        runCompanion({"samples", "--plot", "--channels", "1", file.path()}, surroundingsOf({}));
    auto const lines = linesOf(result.out);
    EXPECT_NE(lines.at(1).find("2,000 samples  400 missing"), std::string::npos);
    EXPECT_NE(lines.at(2).find("xxxxxxx"), std::string::npos);
    auto const marks = std::find_if(lines.begin(), lines.end(), [](std::string const& line) {
        return line.starts_with("missing ");
    });
    EXPECT_NE(marks, lines.end());
    EXPECT_NE(result.err.find("400 lost"), std::string::npos);
}

TEST(SamplesPlot, KeepsItsAlignmentWhateverNamesThereAre) {
    for (std::string const& name : {std::string("\x1b[31mred\r\n"), std::string("\xff\xfe\0x", 4),
                                    std::string("\u202eabc\u2066"), std::string("\u4e2d\u6587"),
                                    std::string(60, 'x') + std::string(60, 'y')}) {
        WaveformSettings settings = declaredWave();
        settings.svID = name;
        TempFile const file(WaveformStream(settings).send(400).captures().at(0));
        auto const lines =
            plotOf({file.path()}, surroundingsOf({{"LC_ALL", "C.UTF-8"}, {"COLUMNS", "40"}}));
        EXPECT_EQ(widestOf(lines), 40U);
        for (auto const& line : lines) {
            EXPECT_EQ(line.find_first_of("\x1b\r\x08"), std::string::npos);
            EXPECT_EQ(line.find("\u202e"), std::string::npos);
        }
    }
}

TEST(SamplesPlot, TakesWhatHasNoLayout) {
    WaveformSettings settings = declaredWave();
    settings.members = {WaveMember::int8u, WaveMember::int8u, WaveMember::int8u};
    TempFile const file(WaveformStream(settings).send(40).captures().at(0));
    auto const result = runCompanion({"samples", "--plot", file.path()}, surroundingsOf({}));
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("not known: see --layout"), std::string::npos);
    EXPECT_EQ(linesOf(result.out).back(), "0 channels of 1 stream in 1 file");
}

TEST(SamplesPlot, GoesIntoAFile) {
    auto const file = secondOfSamples();
    TempDir const folder;
    auto const plot = folder.file("plot.txt");
    EXPECT_TRUE(plotOf({"-o", plot, file.path()}) == std::vector<std::string>());
    EXPECT_EQ(linesOf(textOf(plot)), plotOf({file.path()}));
}

}  // namespace
}  // namespace TalTest::SamplesPlotTest
