#include "report/ReportPage.hpp"

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "support/Data.hpp"
#include "support/Goose.hpp"
#include "tools/CompanionProcess.hpp"

namespace TalTest {

using Json = nlohmann::json;
using TalIec61850Analysis::CaptureTime;
using TalIec61850Analysis::captureTimeOf;

CaptureTime instantOf(std::int64_t time) { return captureTimeOf(time); }

std::vector<WaveformStream::Captured> tripOf(std::int64_t start) {
    constexpr std::int64_t kMillisecond = 1'000'000;
    std::vector<WaveformStream::Captured> frames;
    auto const send = [&](std::int64_t after, std::uint32_t stNum, std::uint32_t sqNum, bool is) {
        GooseMessage message;
        message.gocbRef = "PROT/LLN0$GO$gcbTrip";
        message.stNum = MinimalUnsigned(stNum);
        message.sqNum = MinimalUnsigned(sqNum);
        message.setData({dataBoolean(is), dataQuality(), dataInteger(stNum)});
        frames.push_back(
            {.time = start + after * kMillisecond, .frame = gooseFrame(Ethernet(), message)});
    };
    send(1, 1, 10, false);
    send(200, 2, 0, true);
    send(204, 2, 1, true);
    send(212, 2, 2, true);
    send(300, 3, 0, false);
    send(310, 3, 1, false);
    return frames;
}

WaveformStream waveOf(WaveformSettings const& settings) {
    WaveformStream stream(settings);
    stream.send(1200).lose(3).send(797);
    return stream;
}

WaveformSettings floatWave() {
    WaveformSettings settings;
    settings.svID = "MU02";
    settings.rate = 4800;
    settings.frequency = 60;
    settings.members = repeatedMembers({WaveMember::float32, WaveMember::quality}, 3);
    return settings;
}

WaveformSettings doubleWave() {
    WaveformSettings settings;
    settings.svID = "MU03";
    settings.members = repeatedMembers({WaveMember::float64, WaveMember::quality}, 3);
    return settings;
}

namespace {

/// Ends the browser when all tests are over.
class OneBrowser : public testing::Environment {
public:
    void TearDown() override { browser_.reset(); }

    Browser* get() {
        if (!browser_ && Browser::isThere()) {
            browser_ = std::make_unique<Browser>();
        }
        return browser_.get();
    }

private:
    std::unique_ptr<Browser> browser_;
};

// NOLINTNEXTLINE(cert-err58-cpp): googletest owns it
auto* const theBrowser =
    static_cast<OneBrowser*>(testing::AddGlobalTestEnvironment(new OneBrowser));

}  // namespace

Browser& ReportPage::browser() { return *theBrowser->get(); }

void ReportPage::SetUp() {
    if (theBrowser->get() == nullptr) {
        if (std::getenv("TAL_REQUIRE_BROWSER") != nullptr) {
            FAIL() << "there is no browser: install chromium";
        }
        GTEST_SKIP() << "there is no browser";
    }
}

void ReportPage::TearDown() {
    if (theBrowser->get() != nullptr) {
        EXPECT_EQ(browser().complaints(), std::vector<std::string>());
        EXPECT_EQ(browser().requests(), std::vector<std::string>());
    }
}

std::string ReportPage::report(Bytes const& capture, std::vector<std::string> const& options,
                               std::string const& name, Faults faults) {
    std::string const path = folder_.write(name, capture);
    std::string const page = folder_.file("report.html");
    std::filesystem::remove(page);  // one of another call is not taken for this one's
    std::vector<std::string> arguments = {"report", "-o", page, path};
    arguments.insert(arguments.end(), options.begin(), options.end());
    ProcessResult const result = runCompanion(arguments);
    EXPECT_TRUE(result.status == 0 || faults == Faults::mayBe) << result.err;
    return page;
}

void ReportPage::open(std::string const& page, std::string const& link) {
    browser().open(page, link);
    EXPECT_EQ(browser().complaints(), std::vector<std::string>());
    EXPECT_EQ(browser().requests(), std::vector<std::string>());
}

void ReportPage::openAt(std::string const& page, std::int64_t time, std::int64_t span) {
    open(page, "#t=" + std::to_string(time) + "&span=" + std::to_string(span));
}

Json ReportPage::readout() {
    return browser().ask(
        "[...document.querySelectorAll('#cursor tr[data-channel]')]"
        ".map((row) => [...row.cells].map((cell) => cell.textContent))");
}

std::string ReportPage::cursorTime() {
    return browser().text("document.getElementById('cursorTime').textContent");
}

double ReportPage::span() {
    return browser()
        .ask(
            "Number(BigInt(document.getElementById('view').dataset.to) - "
            "BigInt(document.getElementById('view').dataset.from))")
        .get<double>();
}

void ReportPage::press(std::string const& key) {
    static_cast<void>(browser().askDrawn("void 0"));
    for (char const* const type : {"keyDown", "keyUp"}) {
        browser().call("Input.dispatchKeyEvent",
                       {{"type", type}, {"key", key}, {"text", key.size() == 1 ? key : ""}});
    }
}

void ReportPage::click(std::string const& element, std::string const& x) {
    Json const place = browser().askDrawn(
        "(() => { const element = " + element +
        "; element.scrollIntoView({ block: 'center' }); const box = "
        "element.getBoundingClientRect(); return [box.left + (" +
        (x.empty() ? "box.width / 2" : x) + "), box.top + Math.min(box.height / 2, 12)]; })()");
    for (char const* const type : {"mousePressed", "mouseReleased"}) {
        browser().call("Input.dispatchMouseEvent", {{"type", type},
                                                    {"x", place[0]},
                                                    {"y", place[1]},
                                                    {"button", "left"},
                                                    {"clickCount", 1}});
    }
    static_cast<void>(browser().askDrawn("void 0"));
}

}  // namespace TalTest
