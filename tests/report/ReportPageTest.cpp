// The page that `report` writes, in a browser: its axis, tables, themes and paper.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "report/ReportPage.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/render/RoundTicks.hpp"
#include "tools/render/UtcText.hpp"

namespace TalTest::ReportPageTest {
namespace {

using Json = nlohmann::json;

TEST_F(ReportPage, FollowsAsOneZoomsAndMoves) {
    WaveformStream const stream = waveOf({});
    std::int64_t const time = stream.rows(true)[800].time;
    std::string const page = report(captureOf({&stream}, tripOf(stream.rows(true)[0].time)));
    openAt(page, time);
    auto const labels = [&] {
        return browser().askDrawn(
            "[...document.querySelectorAll('#timeline .dygraph-axis-label-x')]"
            ".map((label) => label.textContent).join()");
    };
    EXPECT_EQ(span(), 40e6);
    Json const before = labels();
    press("+");
    EXPECT_EQ(span(), 20e6);
    EXPECT_NE(labels(), before);
    EXPECT_EQ(browser().text("location.hash"), "#t=" + std::to_string(time) + "&span=20000000");
    press("ArrowRight");
    press("ArrowRight");
    EXPECT_EQ(browser().text("document.getElementById('cursorTime').textContent"),
              TalIec61850Tools::toUtcText(instantOf(stream.rows(true)[802].time)));
    std::string const link = browser().text("location.hash");
    press("-");
    press("-");
    EXPECT_EQ(span(), 80e6);
    // Each chart has the axis of the others, and what it draws is of that time.
    EXPECT_EQ(browser().askDrawn("new Set(timeline.charts.filter((chart) => chart.drawn)"
                                 ".map((chart) => chart.graph.xAxisRange().join())).size"),
              1);
    open(page, link);
    EXPECT_EQ(span(), 20e6);
    EXPECT_EQ(browser().text("location.hash"), link);
    // What the library draws at any zoom has the least and the largest value of all samples.
    Json const ranges = browser().ask(
        "[2000, 700, 150].map((columns) => { const rows = waveformRows(streams[0], [0], whole, "
        "columns).map((row) => row[1]).filter((y) => y !== null);"
        "return [Math.min(...rows), Math.max(...rows)]; })");
    EXPECT_EQ(ranges[0], ranges[1]);
    EXPECT_EQ(ranges[0], ranges[2]);
}

TEST_F(ReportPage, HasTheTicksThatOtherPicturesHave) {
    using TalIec61850Tools::TimeStep;
    WaveformStream const stream = waveOf({});
    open(report(captureOf({&stream})));
    std::int64_t const base = std::stoll(browser().ask("report.base").get<std::string>());
    for (double const length : {300.0, 40e6, 50e9, 7200e9, 72'000e9, 3.6e15}) {
        Json const ticks = browser().ask("timeTicks(0, " + std::to_string(length) +
                                         ", 760).map((tick) => [tick.v, tick.label])");
        ASSERT_GE(ticks.size(), 2U) << length;
        auto const timeOf = [&](std::size_t i) {
            return base + static_cast<std::int64_t>(ticks[i][0].get<double>());
        };
        std::int64_t const step = timeOf(1) - timeOf(0);
        auto const& steps = TalIec61850Tools::timeSteps();
        EXPECT_TRUE(std::any_of(steps.begin(), steps.end(), [&](TimeStep const& each) {
            return each.length == step;
        })) << step;
        for (std::size_t i = 0; i < ticks.size(); ++i) {
            EXPECT_EQ(timeOf(i) % step, 0);
            EXPECT_EQ(ticks[i][1], TalIec61850Tools::tickText(timeOf(i), step));
        }
    }
}

TEST_F(ReportPage, ZoomsByTheWheelWithCtrlAndByADrag) {
    WaveformStream const stream = waveOf({});
    openAt(report(captureOf({&stream})), stream.rows(true)[800].time);
    // The plot of the first chart that has samples, from its left edge.
    Json const area = browser().askDrawn(
        "(() => { const chart = timeline.charts.find((each) => each.wish.snap); "
        "chart.plot.scrollIntoView({ block: 'center' }); "
        "const box = chart.plot.getBoundingClientRect(); const area = chart.graph.getArea(); "
        "return [box.left + area.x, box.top + area.h / 2, area.w]; })()");
    double const left = area[0];
    double const width = area[2];
    auto const mouse = [&](std::string const& type, double part, Json more) {
        more.update({{"type", type}, {"x", left + width * part}, {"y", area[1]}});
        browser().call("Input.dispatchMouseEvent", more);
        static_cast<void>(browser().askDrawn("void 0"));
    };
    constexpr int kCtrl = 2;
    Json const wheelUp = {{"deltaX", 0}, {"deltaY", -100}, {"modifiers", kCtrl}};
    mouse("mouseWheel", 0.5, wheelUp);
    EXPECT_NEAR(span(), 32e6, 1);
    mouse("mouseWheel", 0.5, {{"deltaX", 0}, {"deltaY", 100}, {"modifiers", kCtrl}});
    EXPECT_NEAR(span(), 40e6, 1);
    // A quarter of what is seen.
    Json const button = {{"button", "left"}, {"buttons", 1}, {"clickCount", 1}};
    mouse("mousePressed", 0.5, button);
    mouse("mouseMoved", 0.6, button);
    mouse("mouseMoved", 0.75, button);
    mouse("mouseReleased", 0.75, button);
    EXPECT_NEAR(span(), 10e6, 40e6 / width * 2);
    // The wheel alone scrolls the page.
    double const before = span();
    mouse("mouseWheel", 0.5, {{"deltaX", 0}, {"deltaY", -100}});
    EXPECT_EQ(span(), before);
}

TEST_F(ReportPage, StepsByTheSamplesThatAreShown) {
    WaveformSettings slow;
    slow.svID = "MU02";
    slow.rate = 1000;
    WaveformStream const first = waveOf({});
    WaveformStream second(slow);
    second.send(500);
    auto const rows = second.rows(true);
    openAt(report(captureOf({&first, &second})), rows[100].time, 200'000'000);
    static_cast<void>(browser().askDrawn("void (streams[0].box.open = false)"));
    press("ArrowRight");
    EXPECT_EQ(cursorTime(), TalIec61850Tools::toUtcText(instantOf(rows[101].time)));
    // Each course of samples has its own interval.
    static_cast<void>(
        browser().ask("void streams[1].segments.unshift({ count: 0, isEnvelope: false, "
                      "x: 0, length: 0, interval: 5e7 })"));
    press("ArrowRight");
    EXPECT_EQ(cursorTime(), TalIec61850Tools::toUtcText(instantOf(rows[102].time)));
}

TEST_F(ReportPage, SaysThatValuesAreCounts) {
    WaveformStream const stream = waveOf(floatWave());
    auto const hints = [] {
        return browser().text(
            "[...document.querySelectorAll('#cursor .hint')].map((hint) => hint.innerText).join()");
    };
    openAt(report(captureOf({&stream}), {"--layout",
                                         "float32,quality,float32,quality,"
                                         "float32,quality"}),
           stream.rows(true)[800].time);
    EXPECT_NE(hints().find("Values without a unit are counts."), std::string::npos) << hints();
    WaveformStream const units = waveOf({});
    openAt(report(captureOf({&units})), units.rows(true)[800].time);
    EXPECT_EQ(hints().find("counts"), std::string::npos) << hints();
}

TEST_F(ReportPage, HasItsTablesWithoutScript) {
    WaveformStream const stream = waveOf({});
    std::string const page = report(captureOf({&stream}, tripOf(stream.rows(true)[0].time)));
    browser().call("Emulation.setScriptExecutionDisabled", {{"value", true}});
    open(page);
    auto const rowsOf = [&](std::string const& id) {
        return browser().ask("document.querySelectorAll('#" + id + " tbody tr').length");
    };
    EXPECT_EQ(rowsOf("streams"), 2);
    EXPECT_EQ(rowsOf("events"), 2);
    EXPECT_GE(rowsOf("findings").get<int>(), 1);
    EXPECT_EQ(browser().ask("document.querySelectorAll('#events svg.curve').length"), 2);
    EXPECT_EQ(browser().ask("document.querySelectorAll('#head li').length"), 5);
    EXPECT_TRUE(browser().ask("document.documentElement.dataset.ready").is_null());
    browser().call("Emulation.setScriptExecutionDisabled", {{"value", false}});
}

TEST_F(ReportPage, FitsWideAndNarrowAndDark) {
    WaveformStream const stream = waveOf({});
    std::int64_t const time = stream.rows(true)[800].time;
    std::string const page = report(captureOf({&stream}, tripOf(stream.rows(true)[0].time)));
    auto const ground = [&] {
        return browser().text("getComputedStyle(document.body).backgroundColor");
    };
    for (int const width : {400, 1280}) {
        browser().call(
            "Emulation.setDeviceMetricsOverride",
            {{"width", width}, {"height", 900}, {"deviceScaleFactor", 1}, {"mobile", false}});
        openAt(page, time);
        EXPECT_LE(browser().ask("document.documentElement.scrollWidth").get<int>(), width);
    }
    browser().call("Emulation.clearDeviceMetricsOverride");
    std::string const light = ground();
    browser().call("Emulation.setEmulatedMedia",
                   {{"features", {{{"name", "prefers-color-scheme"}, {"value", "dark"}}}}});
    EXPECT_NE(ground(), light);
    EXPECT_NE(browser().askDrawn("timeline.charts[1].graph.getOption('gridLineColor')"),
              browser().ask("'#e7eaee'"));
    browser().call("Emulation.setEmulatedMedia", {{"features", Json::array()}});
}

TEST_F(ReportPage, PrintsOnWhiteAndAsWideAsPaper) {
    WaveformStream const stream = waveOf({});
    std::string const page = report(captureOf({&stream}, tripOf(stream.rows(true)[0].time)));
    browser().call("Emulation.setDeviceMetricsOverride",
                   {{"width", 1400}, {"height", 900}, {"deviceScaleFactor", 1}, {"mobile", false}});
    browser().call("Emulation.setEmulatedMedia",
                   {{"features", {{{"name", "prefers-color-scheme"}, {"value", "dark"}}}}});
    open(page);
    auto const widest = [] {
        return browser()
            .askDrawn(
                "Math.max(...[...document.querySelectorAll('#timeline canvas')]"
                ".map((canvas) => canvas.getBoundingClientRect().right))")
            .get<double>();
    };
    auto const pictures = [] {
        return browser().ask("document.querySelectorAll('img.printed').length").get<int>();
    };
    auto const grid = [] {
        return browser().text("timeline.charts[1].graph.getOption('gridLineColor')");
    };
    double const before = widest();
    std::string const dark = grid();
    browser().call("Emulation.setEmulatedMedia", {{"media", "print"}});
    static_cast<void>(browser().ask("void dispatchEvent(new Event('beforeprint'))"));
    EXPECT_GT(before, 960);
    EXPECT_LE(widest(), 960);
    EXPECT_GT(widest(), 900);
    // Two canvases for each chart in sight.
    EXPECT_EQ(pictures(),
              browser().ask("2 * timeline.charts.filter((chart) => chart.drawn).length"));
    EXPECT_EQ(browser().ask("[...document.querySelectorAll('img.printed')]"
                            ".filter((picture) => picture.src.length > 10000).length >= 2"),
              true);  // the charts of currents and voltages are not blank
    EXPECT_EQ(grid(), "#e7eaee");
    EXPECT_EQ(browser().text("getComputedStyle(document.body).backgroundColor"),
              "rgb(255, 255, 255)");
    for (char const* const id : {"controls", "hint", "licence"}) {
        EXPECT_EQ(browser().text("getComputedStyle(document.getElementById('" + std::string(id) +
                                 "')).display"),
                  "none")
            << id;
    }
    EXPECT_EQ(browser().text("getComputedStyle(document.querySelector('#events thead')).display"),
              "table-header-group");
    EXPECT_LE(browser().ask("document.documentElement.scrollWidth").get<int>(), 1400);
    browser().call(
        "Emulation.setEmulatedMedia",
        {{"media", ""}, {"features", {{{"name", "prefers-color-scheme"}, {"value", "dark"}}}}});
    static_cast<void>(browser().ask("void dispatchEvent(new Event('afterprint'))"));
    EXPECT_EQ(widest(), before);
    EXPECT_EQ(grid(), dark);
    EXPECT_EQ(pictures(), 0);
    browser().call("Emulation.setEmulatedMedia", {{"media", ""}, {"features", Json::array()}});
    browser().call("Emulation.clearDeviceMetricsOverride");
}

}  // namespace
}  // namespace TalTest::ReportPageTest
