// Pages of nothing, of too much, and of hours.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "report/ReportPage.hpp"
#include "support/CaptureFile.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/output/WithCommas.hpp"
#include "tools/report/SeverityRoom.hpp"
#include "tools/report/WaveformsSection.hpp"

namespace TalTest::ReportLimitsTest {
namespace {

using Json = nlohmann::json;

TEST_F(ReportPage, SaysWhatIsNotThere) {
    std::string const page = report(captureOf({}));
    open(page);
    struct Place {
        std::string heading;
        std::string sentence;
    };
    for (auto const& [heading, sentence] :
         {Place{"What happened", "There is no stream of Sampled Values to draw."},
          Place{"What happened", "There is no GOOSE stream to draw."},
          Place{"Streams", "There is no GOOSE or SV stream."},
          Place{"Findings", "Nothing was found."}, Place{"Events", "No GOOSE state changed."},
          Place{"Arrival of samples", "There are no samples in this time."},
          Place{"Redundancy", "No frame has an HSR tag or a PRP trailer."}}) {
        std::string const text = browser().text(
            "[...document.querySelectorAll('section')].find(section => "
            "section.querySelector('h2').textContent === '" +
            heading + "').textContent");
        EXPECT_NE(text.find(sentence), std::string::npos) << heading << ": " << text;
    }
}

TEST_F(ReportPage, KeepsToItsSizeByColumns) {
    WaveformSettings settings;
    settings.members = repeatedMembers({WaveMember::float64, WaveMember::quality}, 8);
    WaveformStream stream(settings);
    stream.send(60'000);
    std::string const page = report(
        captureOf({&stream}), {"--max-size", "2M", "--layout",
                               "float64,quality,float64,quality,float64,quality,float64,quality,"
                               "float64,quality,float64,quality,float64,quality,float64,quality"});
    EXPECT_LE(std::filesystem::file_size(page), 2'000'000U);
    auto const rows = stream.rows(true);
    openAt(page, rows[30'000].time);
    std::string const head = browser().text("document.getElementById('head').innerText");
    EXPECT_NE(head.find("kept as least and largest values"), std::string::npos) << head;
    EXPECT_NE(readout()[0][1].get<std::string>().find(" to "), std::string::npos);
    double least = 0;
    double largest = 0;
    for (WaveformRow const& row : rows) {
        least = std::min(least, toReal(WaveMember::float64, row.values[0]));
        largest = std::max(largest, toReal(WaveMember::float64, row.values[0]));
    }
    Json const range =
        browser().ask("streams[0].segments[0].range(0, 0, streams[0].segments[0].count)");
    EXPECT_EQ(range[0].get<double>(), least);
    EXPECT_EQ(range[1].get<double>(), largest);
}

/// Eight channels of noise in FLOAT64, which take all of their octets.
WaveformStream noisyWave(std::uint32_t rate, std::size_t frames) {
    WaveformSettings settings;
    settings.rate = rate;
    settings.smpMod = 1;
    settings.smpRate = static_cast<std::uint16_t>(rate);
    settings.members = repeatedMembers({WaveMember::float64, WaveMember::quality}, 8);
    WaveformStream stream(settings);
    stream.send(frames);
    return stream;
}

std::string const kEightDoubles =
    "float64,quality,float64,quality,float64,quality,float64,quality,"
    "float64,quality,float64,quality,float64,quality,float64,quality";

TEST_F(ReportPage, IsAsLargeAsItMayBe) {
    WaveformStream const stream = noisyWave(4000, 60'000);
    Bytes const capture = captureOf({&stream});
    std::string const columns = "Number(streams[0].segments[0].count)";
    double before = 0;
    for (std::uint64_t const size : {2'000'000U, 2'500'000U, 3'500'000U}) {
        std::string const page =
            report(capture, {"--max-size", std::to_string(size), "--layout", kEightDoubles});
        EXPECT_LE(std::filesystem::file_size(page), size);
        open(page);
        std::string const head = browser().text("document.getElementById('head').innerText");
        EXPECT_NE(head.find("a page of at most " + TalIec61850Tools::withCommas(size) + " octets"),
                  std::string::npos)
            << head;
        double const count = browser().ask(columns).get<double>();
        EXPECT_GE(count, before);
        before = count;
    }
    std::string const page = report(capture, {"--max-size", "40M", "--layout", kEightDoubles});
    open(page);
    EXPECT_EQ(browser().ask(columns), 60'000);
    EXPECT_NE(browser()
                  .text("document.getElementById('head').innerText")
                  .find("all of them are in this page"),
              std::string::npos);
}

TEST_F(ReportPage, KeepsToItsSizeWithNamesThatTakeMoreInAPage) {
    std::vector<WaveformStream> streams;
    for (std::size_t i = 0; i < 20; ++i) {
        WaveformSettings settings;
        settings.svID = std::string(1000, '<') + std::to_string(i);
        settings.members = repeatedMembers({WaveMember::float64, WaveMember::quality}, 8);
        streams.emplace_back(settings);
        streams.back().send(600 + 40 * i);
    }
    std::vector<WaveformStream const*> all;
    for (WaveformStream const& stream : streams) {
        all.push_back(&stream);
    }
    std::string const page =
        report(captureOf(all), {"--max-size", "2000000", "--layout", kEightDoubles});
    EXPECT_LE(std::filesystem::file_size(page), 2'000'000U);
    open(page);
    EXPECT_GT(browser().ask("streams.length"), 0);
}

TEST_F(ReportPage, LeavesOutStreamsThatFitInNoWay) {
    WaveformStream const stream = waveOf({});
    std::string const path = folder_.write("bay1.pcap", captureOf({&stream}));
    auto const index = TalIec61850Analysis::indexCapture(path);
    TalIec61850Tools::PictureNames const names;
    auto const wish = [](auto const&) { return TalIec61850Tools::PageStreamWish(); };
    TalIec61850Tools::WaveformsSection roomy(index, names, wish, 1'000'000);
    roomy.add(0);
    EXPECT_FALSE(roomy.isEmpty());
    TalIec61850Tools::WaveformsSection tight(index, names, wish, 100);
    tight.add(0);
    EXPECT_TRUE(tight.isEmpty());
    EXPECT_EQ(tight.absent(1).size(), 1U);
    EXPECT_EQ(tight.take(100).octets, "");
}

TEST_F(ReportPage, HalvesColumnsWithoutTheCapture) {
    using namespace TalIec61850Tools;
    WaveformStream const stream = noisyWave(4000, 60'000);
    std::string const path = folder_.write("bay1.pcap", captureOf({&stream}));
    auto const index = TalIec61850Analysis::indexCapture(path);
    std::size_t blocks = 0;
    PageStreamWish wish;
    wish.admits = [&](auto const&) { return ++blocks > 0; };
    PageStream picture = drawColumns(index, index.streams()[0], wish, PictureNames());
    std::size_t const blocksOfAll = std::exchange(blocks, 0);
    ASSERT_GT(blocksOfAll, 2U);
    // Reading ends where there are too many samples to hold, and begins again once.
    wish.mostValues = 8;
    PageStream const tooMany = drawSamples(index, index.streams()[0], wish, PictureNames());
    EXPECT_TRUE(tooMany.isOverMemory);
    EXPECT_EQ(blocks, blocksOfAll + 1);
    EXPECT_EQ(tooMany.json, picture.json);
    std::filesystem::remove(path);
    std::size_t const columns = picture.columns;
    std::int64_t const width = picture.columnWidth;
    halveColumns(picture);
    EXPECT_EQ(picture.columns, (columns + 1) / 2);
    EXPECT_EQ(picture.columnWidth, 2 * width);
    EXPECT_EQ(picture.json["segments"][0]["count"], picture.columns);
    EXPECT_EQ(picture.received, 60'000U);
}

TEST_F(ReportPage, DrawsHours) {
    constexpr std::size_t kSixHours = 6 * 3600 * 10;
    WaveformStream const stream = noisyWave(10, kSixHours);
    auto const rows = stream.rows(true);
    Bytes const capture = captureOf({&stream}, tripOf(rows[kSixHours / 2].time));
    std::string const page =
        report(capture, {"--max-size", "3M", "--layout", kEightDoubles, "--rate", "10"});
    EXPECT_LE(std::filesystem::file_size(page), 3'000'000U);
    openAt(page, rows[kSixHours / 2].time, 1'000'000'000'000);
    EXPECT_NE(browser()
                  .text("document.getElementById('head').innerText")
                  .find("kept as least and largest values"),
              std::string::npos);
    // A column has what was sampled in it.
    double least = 0;
    double largest = 0;
    std::string const text = readout()[0][1].get<std::string>();
    ASSERT_EQ(std::sscanf(text.c_str(), "%lf to %lf", &least, &largest), 2) << text;
    double const value = toReal(WaveMember::float64, rows[kSixHours / 2].values[0]);
    EXPECT_LE(least, value);
    EXPECT_GE(largest, value);
    press("Home");
    Json const labels = browser().askDrawn(
        "[...new Set([...document.querySelectorAll('#timeline .dygraph-axis-label-x')]"
        ".map((label) => label.textContent))]");
    EXPECT_GE(labels.size(), 3U);
    for (Json const& label : labels) {
        EXPECT_EQ(label.get<std::string>().size(), 5U) << label;  // 22:20
    }
}

using TalIec61850Tools::PerSeverity;
using TalIec61850Tools::shareOut;

PerSeverity<std::vector<std::size_t>> findingsOfTen(std::size_t notes, std::size_t warnings,
                                                    std::size_t errors) {
    constexpr std::size_t kOctets = 10;
    return {std::vector<std::size_t>(notes, kOctets), std::vector<std::size_t>(warnings, kOctets),
            std::vector<std::size_t>(errors, kOctets)};
}

TEST(SeverityRoom, HasRoomForAnErrorAfterManyNotes) {
    using Counts = PerSeverity<std::size_t>;
    EXPECT_EQ(shareOut(findingsOfTen(22'000, 0, 1), {.most = 100, .mostOctets = 1'000'000}),
              (Counts{99, 0, 1}));
    EXPECT_EQ(shareOut(findingsOfTen(200, 200, 200), {.most = 100, .mostOctets = 1'000'000}),
              (Counts{25, 25, 50}));
    EXPECT_EQ(shareOut(findingsOfTen(0, 3, 200), {.most = 100, .mostOctets = 1'000'000}),
              (Counts{0, 3, 97}));
    EXPECT_EQ(shareOut(findingsOfTen(200, 200, 2), {.most = 100, .mostOctets = 200}),
              (Counts{5, 13, 2}));
    EXPECT_EQ(shareOut(findingsOfTen(2, 2, 2), {.most = 100, .mostOctets = 9}), (Counts{0, 0, 0}));
}

TEST_F(ReportPage, SaysWhichProtocolIsNotThere) {
    WaveformStream const stream = waveOf({});
    open(report(captureOf({&stream}, {})));
    std::string const ofSamples = browser().text("document.body.innerText");
    EXPECT_NE(ofSamples.find("There is no GOOSE stream to draw."), std::string::npos);
    EXPECT_NE(ofSamples.find("No GOOSE state changed."), std::string::npos);
    EXPECT_EQ(ofSamples.find("There is no stream of Sampled Values"), std::string::npos);
    open(report(captureOf({}, tripOf(1'700'000'000'000'000'000))));
    std::string const ofStates = browser().text("document.body.innerText");
    EXPECT_NE(ofStates.find("There is no stream of Sampled Values to draw."), std::string::npos);
    EXPECT_NE(ofStates.find("There are no samples in this time."), std::string::npos);
    EXPECT_EQ(ofStates.find("There is no GOOSE stream to draw."), std::string::npos);
    EXPECT_EQ(browser().ask("document.querySelectorAll('#timeline .lanes').length > 0"), true);
    // A time in which there is nothing.
    open(report(captureOf({&stream}, tripOf(stream.rows(true)[0].time)), {"--from", "+100s"}));
    EXPECT_NE(
        browser().text("document.body.innerText").find("No samples can be drawn in this time"),
        std::string::npos);
}

}  // namespace
}  // namespace TalTest::ReportLimitsTest
