// Names that would be markup, script, or commands to a terminal.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "report/ReportPage.hpp"
#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "tools/DescribedStation.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::ReportHostileTest {
namespace {

using Json = nlohmann::json;
using TalIec61850Tools::escapeText;

std::vector<std::string> const& hostileNames() {
    static std::vector<std::string> const names = {"</script><script>window.isRun = 1</script>",
                                                   "<img src=x onerror=\"window.isRun = 1\">",
                                                   "\"'><b>&amp;&#60;",
                                                   "\xe2\x80\xae"
                                                   "txt",
                                                   "\xff\xfe\xc3",
                                                   "{{samples}}",
                                                   "<!--<script>",
                                                   "]]></style>",
                                                   "a\nb\\u003c"};
    return names;
}

/// Expects that the page is drawn, and that nothing of a name was taken for markup.
void expectTextAlone(Browser& browser) {
    EXPECT_TRUE(browser.ask("window.isRun").is_null());
    EXPECT_EQ(browser.ask("document.scripts.length"), 4);
    EXPECT_EQ(browser.ask("document.images.length"), 0);
    EXPECT_EQ(browser.ask("document.querySelectorAll('b, iframe, object').length"), 0);
    EXPECT_FALSE(browser.ask("document.documentElement.dataset.ready").is_null());
}

TEST_F(ReportPage, ShowsHostileNamesAndRunsNone) {
    std::vector<std::string> const& names = hostileNames();
    CaptureBuilder capture;
    std::uint32_t second = 1'700'000'000;
    for (std::string const& name : names) {
        for (std::uint32_t state = 1; state <= 2; ++state) {
            GooseMessage message = gooseCalled(name);
            message.stNum = MinimalUnsigned(state);
            message.datSet = name;
            message.goID = name;
            message.setData({dataVisibleString(name + std::to_string(state)), dataBoolean(true)});
            capture.add(second, state * 1000, gooseFrame(Ethernet(), message));
        }
        for (std::uint16_t count = 0; count < 200; ++count) {
            capture.add(second, 5000 + 250'000U * count,
                        svFrame(svEthernet(), message92le(name, count)));
        }
        ++second;
    }
    std::string const file =
        "<script>window.isRun = 1<!--\"'&amp;\xe2\x80\xae"
        "pacp\xff.pcap";
    std::string const page = report(capture.bytes(), {}, file);
    openAt(page, 1'700'000'000'000'000'000);
    expectTextAlone(browser());
    std::string const all = browser().text("document.body.innerText + document.title");
    EXPECT_NE(browser().text("document.body.innerText").find(escapeText(file)), std::string::npos);
    EXPECT_NE(browser().text("document.title").find(escapeText(file)), std::string::npos);
    EXPECT_EQ(all.find("\xe2\x80\xae"), std::string::npos);
    for (std::string const& name : names) {
        EXPECT_NE(all.find(escapeText(name)), std::string::npos) << escapeText(name);
    }
    EXPECT_EQ(browser().ask("report.goose.length"), names.size());
    EXPECT_EQ(browser().ask("streams.length"), names.size());
}

std::string replacedAll(std::string text, std::string const& what, std::string const& by) {
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string toXml(std::string const& text) {
    std::string xml;
    for (char const c : text) {
        xml += c == '<' ? "&lt;" : c == '&' ? "&amp;" : c == '\'' ? "&apos;" : std::string(1, c);
    }
    return xml;
}

TEST_F(ReportPage, ShowsHostileNamesOfADescriptionAsText) {
    for (std::string const& name : hostileNames()) {
        // A data object of GOOSE, the prefix of a channel's node, an IED and its description.
        std::string station = replacedAll(describedStation(), "'Tr'", "'" + toXml(name) + "'");
        station = replacedAll(station, "'InnA'", "'" + toXml(name) + "'");
        station = replacedAll(station, "<IED name='RELAY1'",
                              "<IED desc='" + toXml(name) + "' name='RELAY1'");
        station = replacedAll(station, "RELAY1", toXml("R" + name));
        std::string const path = folder_.write("station.scd", octetsOfText(station));
        // What a description may not have is told, and is no fault of the page.
        open(report(describedTrips(), {"--scl", path}, "bay1.pcap", Faults::mayBe));
        expectTextAlone(browser());
        open(report(describedSamples(), {"--scl", path}, "bay1.pcap", Faults::mayBe));
        expectTextAlone(browser());
        std::string const channel =
            browser().text("[...document.querySelectorAll('.channels label')][0].textContent");
        // A line feed in an attribute is read as a blank.
        EXPECT_EQ(channel,
                  escapeText("LD0/" + replacedAll(name, "\n", " ") + "TCTR1.Amp.instMag.i"));
    }
    // The same with a name that a description may have.
    std::string const odd = "<b>\"\xe2\x80\xae&";
    std::string station = replacedAll(describedStation(), "'Tr'", "'" + toXml(odd) + "'");
    station = replacedAll(station, "'InnA'", "'" + toXml(odd) + "'");
    std::string const path = folder_.write("station.scd", octetsOfText(station));
    open(report(describedTrips(), {"--scl", path}));
    EXPECT_NE(browser().text("report.goose[0].lanes[0].name").find(escapeText(odd)),
              std::string::npos);
    EXPECT_NE(browser().text("document.body.innerText").find(escapeText(odd)), std::string::npos);
    open(report(describedSamples(), {"--scl", path}));
    EXPECT_NE(browser()
                  .text("[...document.querySelectorAll('.channels')]"
                        ".map((each) => each.textContent).join()")
                  .find(escapeText(odd)),
              std::string::npos);
    expectTextAlone(browser());
}

}  // namespace
}  // namespace TalTest::ReportHostileTest
