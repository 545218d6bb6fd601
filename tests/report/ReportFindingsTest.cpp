// Findings on the time axis of a page: their marks, what they tell, and the ways to their rows.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "report/ReportPage.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/render/UtcText.hpp"

namespace TalTest::ReportFindingsTest {
namespace {

using Json = nlohmann::json;

class ReportFindingsTest : public ReportPage {
protected:
    /// A stream with two gaps, and the page of it.
    void SetUp() override {
        ReportPage::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        stream_.send(400).lose(3).send(400).lose(2).send(400);
        page_ = report(captureOf({&stream_}, tripOf(stream_.rows(true)[0].time)));
        // The middle of both gaps, and both in sight.
        openAt(page_, stream_.rows(true)[600].time, 300'000'000);
        gaps_ = browser().ask(
            "report.marks.map((mark, i) => [i, ...mark]).filter((mark) => wordsOfFinding(mark[0])"
            ".FINDING === 'sampleGap')");
    }

    /// Where the mark of a gap is, from the left edge of its lane.
    [[nodiscard]] std::string pixelOf(std::size_t gap) const {
        return "timeline.charts[0].graph.toDomXCoord(" + gaps_[gap][1].dump() + ")";
    }
    void clickGap(std::size_t gap) const {
        click("document.getElementById('findingMarks')", pixelOf(gap));
    }
    [[nodiscard]] static std::string panel() {
        return browser().text(
            "(() => { const panel = document.getElementById('finding'); "
            "return panel.hidden ? '' : panel.innerText; })()");
    }
    [[nodiscard]] std::string rowOf(std::size_t gap) const {
        return "findings" + gaps_[gap][3].dump();
    }

    WaveformStream stream_;
    std::string page_;
    Json gaps_;
};

TEST_F(ReportFindingsTest, TellsAFindingWhereItsMarkIsClicked) {
    ASSERT_EQ(gaps_.size(), 2U);
    EXPECT_EQ(panel(), "");
    clickGap(0);
    std::string const first = panel();
    EXPECT_NE(first.find("sampleGap"), std::string::npos) << first;
    EXPECT_NE(first.find("MU01"), std::string::npos) << first;
    EXPECT_NE(first.find("bay1.pcap@"), std::string::npos) << first;
    // The sample after the gap came then.
    EXPECT_EQ(cursorTime(),
              TalIec61850Tools::toUtcText(instantOf(stream_.rows(true)[403].arrival)));
    EXPECT_EQ(browser().ask("document.querySelector('#findings tr.chosen').id"), rowOf(0));
    clickGap(1);
    EXPECT_NE(panel(), first);
    EXPECT_EQ(browser().ask("document.querySelectorAll('#findings tr.chosen').length"), 1);
    EXPECT_EQ(browser().ask("document.querySelector('#findings tr.chosen').id"), rowOf(1));
}

TEST_F(ReportFindingsTest, LeadsToTheRowAndBack) {
    ASSERT_EQ(gaps_.size(), 2U);
    clickGap(1);
    click("document.querySelector('#finding a')");
    EXPECT_EQ(browser().text("location.hash"), "#" + rowOf(1));
    auto const isInSight = [](std::string const& element) {
        return browser().askDrawn("(() => { const box = " + element +
                                  ".getBoundingClientRect(); return box.bottom > 0 && "
                                  "box.top < innerHeight; })()");
    };
    EXPECT_EQ(isInSight("document.getElementById('" + rowOf(1) + "')"), true);
    click("document.querySelector('#" + rowOf(0) + " a')");
    // The sample after the gap came then. The gap is short: the link shows 50 ms before and after.
    std::int64_t const time = stream_.rows(true)[403].arrival;
    EXPECT_EQ(browser().text("location.hash"), "#t=" + std::to_string(time) + "&span=100000000");
    EXPECT_EQ(cursorTime(), TalIec61850Tools::toUtcText(instantOf(time)));
    EXPECT_EQ(browser().ask("chosenFinding"), gaps_[0][0]);
    EXPECT_EQ(isInSight("document.getElementById('findingMarks')"), true);
    EXPECT_EQ(browser().ask("document.activeElement.id"), "timeline");
    // The way back in the browser goes to where it was before.
    static_cast<void>(browser().ask(
        "new Promise((done) => { addEventListener('hashchange', () => done(1), { once: true }); "
        "history.back(); })"));
    EXPECT_EQ(browser().text("location.hash"), "#" + rowOf(1));
}

TEST_F(ReportFindingsTest, GoesFromFindingToFindingByKeys) {
    ASSERT_EQ(gaps_.size(), 2U);
    clickGap(0);
    press("n");
    EXPECT_EQ(browser().ask("chosenFinding").get<int>(), gaps_[0][0].get<int>() + 1);
    press("p");
    press("p");
    press("p");
    press("p");
    EXPECT_EQ(browser().ask("chosenFinding"), 0);
    Json const time = browser().ask("report.marks[0][0]");
    EXPECT_EQ(browser().ask("Number(timeline.cursors[0] - base)"), time);
    press("Escape");
    EXPECT_EQ(panel(), "");
    EXPECT_EQ(browser().ask("document.querySelectorAll('tr.chosen').length"), 0);
    // One that the table has no room for.
    static_cast<void>(browser().ask(
        "void (report.marks.push([0, 'note', 0]), chooseFinding(report.marks.length - 1))"));
    EXPECT_NE(panel().find("tal-iec61850 check lists all"), std::string::npos);
    press("Escape");
    // Buttons keep the keyboard's focus.
    press("n");
    EXPECT_NE(panel(), "");
    static_cast<void>(
        browser().ask("void document.querySelectorAll('#finding button')[1].focus()"));
    click("document.querySelectorAll('#finding button')[1]");
    EXPECT_EQ(browser().ask("document.activeElement.textContent"), "Next");
}

TEST_F(ReportFindingsTest, TellsOfAMarkUnderTheMouse) {
    ASSERT_EQ(gaps_.size(), 2U);
    Json const place = browser().askDrawn(
        "(() => { const box = document.getElementById('findingMarks').getBoundingClientRect(); "
        "return [box.left + " +
        pixelOf(0) + ", box.top + 12]; })()");
    browser().call("Input.dispatchMouseEvent",
                   {{"type", "mouseMoved"}, {"x", place[0]}, {"y", place[1]}});
    EXPECT_NE(browser().text("document.getElementById('findingMarks').title").find("sampleGap"),
              std::string::npos);
    browser().call("Input.dispatchMouseEvent",
                   {{"type", "mouseMoved"}, {"x", place[0].get<double>() + 40}, {"y", place[1]}});
    EXPECT_EQ(browser().text("document.getElementById('findingMarks').title"), "");
}

TEST_F(ReportFindingsTest, LeavesArrowsToATableThatIsScrolled) {
    clickGap(0);
    std::string const before = cursorTime();
    static_cast<void>(browser().ask("void document.querySelector('.scroll').focus()"));
    press("ArrowRight");
    EXPECT_EQ(cursorTime(), before);
    static_cast<void>(browser().ask("void document.getElementById('timeline').focus()"));
    press("ArrowRight");
    EXPECT_NE(cursorTime(), before);
}

}  // namespace
}  // namespace TalTest::ReportFindingsTest
