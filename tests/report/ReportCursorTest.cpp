// What a page says at its cursors.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/pictures/MeasureCycle.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "report/ReportPage.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/render/UtcText.hpp"

namespace TalTest::ReportCursorTest {
namespace {

using Json = nlohmann::json;

TEST_F(ReportPage, ShowsAtALinkedMomentTheValuesOfTheSample) {
    WaveformStream const stream = waveOf({});
    auto const rows = stream.rows(true);
    std::string const page = report(captureOf({&stream}, tripOf(stream.rows(true)[0].time)));
    for (std::size_t const place : {0U, 1U, 700U, 777U, 1999U}) {
        WaveformRow const& row = rows[place];
        openAt(page, row.time);
        EXPECT_EQ(cursorTime(), TalIec61850Tools::toUtcText(instantOf(row.time)));
        Json const shown = readout();
        ASSERT_EQ(shown.size(), 8U);
        for (std::size_t channel = 0; channel < 8; ++channel) {
            std::string const text = shown[channel][1].get<std::string>();
            double const count = static_cast<double>(row.values[channel]);
            double const quantity = channel < 4 ? count / 1000 : count / 100;
            EXPECT_EQ(std::strtod(text.c_str(), nullptr), quantity) << text;
            EXPECT_TRUE(text.ends_with(channel < 4 ? " A" : " V")) << text;
            bool const isBad = row.qualities[channel] == 0x803U;
            EXPECT_EQ(shown[channel].back().get<std::string>().find("test") != std::string::npos,
                      isBad);
        }
    }
    openAt(page, rows[1201].time);
    EXPECT_EQ(readout()[0][1], "missing");
    EXPECT_EQ(browser().ask("laneAt(report.goose[0].lanes[0], 250e6).text"), "true");
    EXPECT_EQ(browser().ask("laneAt(report.goose[0].lanes[0], 100e6).text"), "false");
}

TEST_F(ReportPage, MeasuresRmsAndPhasorsAsTheLibraryDoes) {
    WaveformStream const fifty = waveOf({});
    WaveformStream const sixty = waveOf(floatWave());
    WaveformSettings offNominal;
    offNominal.svID = "MU04";
    offNominal.frequency = 49.3;
    WaveformStream const off = waveOf(offNominal);
    Bytes const capture = captureOf({&fifty, &sixty, &off});
    std::string const page = report(capture);
    auto const index = TalIec61850Analysis::indexCapture(folder_.file("bay1.pcap"));
    TalIec61850Analysis::SampleOptions everySample;
    everySample.rows = TalIec61850Analysis::SampleRows::everySample;
    open(page);
    for (std::size_t number = 0; number < 3; ++number) {
        auto const waveform =
            TalIec61850Analysis::readWaveform(index, index.streams()[number], everySample, 10'000);
        std::string const stream = "streams[" + std::to_string(number) + "]";
        double const frequency = browser().ask(stream + ".frequency").get<double>();
        std::int64_t const time = waveform.times[900];
        TalIec61850Analysis::CycleOptions options;
        options.frequency = frequency;
        auto const expected =
            TalIec61850Analysis::measureCycleAt(waveform, instantOf(time), options);
        ASSERT_TRUE(expected);
        for (std::size_t channel = 0; channel < waveform.channels.size(); ++channel) {
            Json const cycle = browser().ask("valueAt(" + stream + ", " + std::to_string(channel) +
                                             ", " + std::to_string(time) + "n).cycle");
            auto const& known = *expected->channels[channel];
            EXPECT_NEAR(cycle["rms"].get<double>() / known.rms, 1, 1e-6);
            EXPECT_NEAR(cycle["magnitude"].get<double>() / known.fundamental.magnitude, 1, 1e-6);
            EXPECT_NEAR(std::remainder(cycle["angle"].get<double>() - known.fundamental.angle,
                                       2 * 3.14159265358979),
                        0, 1e-6);
        }
    }
    EXPECT_NEAR(browser().ask("streams[2].frequency").get<double>(), 49.3, 1e-3);
    // No cycle where a sample of it is missing.
    EXPECT_TRUE(browser()
                    .ask("valueAt(streams[0], 0, " + std::to_string(fifty.rows(true)[1210].time) +
                         "n).cycle")
                    .is_null());
}

TEST_F(ReportPage, MeasuresNoCycleAcrossAJumpOfTime) {
    WaveformStream const stream = waveOf({});
    open(report(captureOf({&stream})));
    // From sample 880 on, 5 ms later than smpCnt says.
    auto const isMeasured = [](std::size_t last) {
        return browser()
            .ask(
                "(() => { const segment = streams[0].segments[0]; const times = segment.times; "
                "segment.times = Float64Array.from({ length: segment.count }, "
                "(_, i) => i < 880 ? 0 : 5e6); "
                "const cycle = measureCycle(segment, 0, " +
                std::to_string(last) +
                ", 50); "
                "segment.times = times; return cycle !== null; })()")
            .get<bool>();
    };
    EXPECT_TRUE(isMeasured(879));
    EXPECT_FALSE(isMeasured(880));
    EXPECT_FALSE(isMeasured(958));
    EXPECT_TRUE(isMeasured(959));
}

/// What a channel shows of a value: 9-2LE has mA and 10 mV, other layouts have counts.
double shownValue(WaveformSettings const& settings, std::size_t channel, std::int64_t value) {
    auto const members = valuesAmong(settings.members);
    double const real = toReal(members[channel], value);
    if (settings.members != WaveformSettings{}.members) {
        return real;
    }
    return channel < 4 ? real / 1000 : real / 100;
}

TEST_F(ReportPage, ShowsTheValuesOfEveryStreamWhateverItIs) {
    WaveformSettings prp = {};
    prp.svID = "MUprp";
    prp.copies = WaveCopies::prp;
    WaveformSettings hsr = {};
    hsr.svID = "MUhsr";
    hsr.copies = WaveCopies::hsr;
    WaveformSettings several = {};
    several.svID = "MUsix";
    several.rate = 14'400;
    several.frequency = 60;
    several.asdus = 6;
    std::vector<WaveformSettings> all = {prp, hsr, several, floatWave(), doubleWave()};
    std::vector<WaveformStream> streams;
    std::vector<WaveformStream const*> sent;
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i].ethernet = Ethernet().to("01:0c:cd:04:00:0" + std::to_string(i + 1));
        streams.push_back(waveOf(all[i]));
    }
    for (WaveformStream const& stream : streams) {
        sent.push_back(&stream);
    }
    std::string const page =
        report(captureOf(sent), {"--layout", "float64,quality,float64,quality,float64,quality"});
    open(page);
    Json const names = browser().ask("streams.map((stream) => stream.name)");
    ASSERT_EQ(names.size(), all.size());
    for (std::size_t i = 0; i < streams.size(); ++i) {
        auto const rows = streams[i].rows(true);
        std::size_t number = 0;
        while (names[number] != all[i].svID) {
            ++number;
        }
        // Those that are closed have no readout.
        static_cast<void>(browser().askDrawn(
            "(() => { streams.forEach((stream, i) => { stream.box.open = i === " +
            std::to_string(number) + "; }); })()"));
        for (std::size_t const place : {5U, 640U, 1111U, 1900U}) {
            // Another moment, as by a link in the page that is open.
            static_cast<void>(browser().ask(
                "new Promise((done) => { addEventListener('hashchange', () => done(1), { once: "
                "true }); location.hash = '#t=" +
                std::to_string(rows[place].time) + "&span=40000000'; })"));
            Json const shown = readout();
            ASSERT_EQ(shown.size(), rows[place].values.size()) << all[i].svID;
            EXPECT_EQ(cursorTime(), TalIec61850Tools::toUtcText(instantOf(rows[place].time)));
            for (std::size_t channel = 0; channel < shown.size(); ++channel) {
                EXPECT_EQ(std::strtod(shown[channel][1].get<std::string>().c_str(), nullptr),
                          shownValue(all[i], channel, rows[place].values[channel]))
                    << all[i].svID << ", row " << place << ", channel " << channel;
            }
        }
    }
}

TEST_F(ReportPage, TellsTimeAndDifferencesBetweenItsCursors) {
    WaveformStream const stream = waveOf({});
    auto const rows = stream.rows(true);
    std::string const page = report(captureOf({&stream}, tripOf(rows[0].time)));
    // Before the trip, and while it lasts: 210 ms after the first sample.
    WaveformRow const& first = rows[400];
    WaveformRow const& second = rows[840];
    open(page, "#t=" + std::to_string(first.time) +
                   "&span=200000000&second=" + std::to_string(second.time));
    EXPECT_EQ(cursorTime(), TalIec61850Tools::toUtcText(instantOf(first.time)));
    EXPECT_EQ(browser().text("document.getElementById('secondTime').textContent"),
              TalIec61850Tools::toUtcText(instantOf(second.time)));
    EXPECT_EQ(browser().text("document.getElementById('difference').textContent"), "110 ms");
    Json const shown = readout();
    ASSERT_EQ(shown.size(), 8U);
    for (std::size_t channel = 0; channel < 8; ++channel) {
        double const here = shownValue({}, channel, first.values[channel]);
        double const there = shownValue({}, channel, second.values[channel]);
        EXPECT_EQ(std::strtod(shown[channel][1].get<std::string>().c_str(), nullptr), here);
        EXPECT_EQ(std::strtod(shown[channel][4].get<std::string>().c_str(), nullptr), there);
        EXPECT_NEAR(std::strtod(shown[channel][5].get<std::string>().c_str(), nullptr),
                    there - here, std::abs(there - here) * 1e-4 + 1e-9);
    }
    EXPECT_EQ(browser().ask("[...document.querySelectorAll('#cursor tr')].map((row) => "
                            "[...row.cells].map((cell) => cell.textContent).join())"
                            ".filter((row) => row.startsWith('1,'))"),
              Json({"1,false,true"}));
    // Arrows take the first cursor from sample to sample, with Shift the second one.
    press("ArrowRight");
    EXPECT_EQ(cursorTime(), TalIec61850Tools::toUtcText(instantOf(rows[401].time)));
    // What is taken from a chart is not told either.
    click("document.querySelectorAll('.channels input')[2]");
    Json const fewer = readout();
    ASSERT_EQ(fewer.size(), 7U);
    EXPECT_EQ(fewer[1][0], "Ib");
    EXPECT_EQ(fewer[2][0], "In");
    press("Escape");
    EXPECT_TRUE(browser().ask("document.getElementById('atCursor').hidden").get<bool>());
}

}  // namespace
}  // namespace TalTest::ReportCursorTest
