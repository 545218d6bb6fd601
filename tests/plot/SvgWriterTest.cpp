// What is written is well-formed, whatever the texts.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <fstream>
#include <limits>
#include <sstream>

#include "plot/SvgReader.hpp"
#include "tools/plot/PixelSpans.hpp"
#include "tools/plot/SvgWriter.hpp"
#include "tools/plot/TextWidth.hpp"

namespace TalTest::SvgWriterTest {
namespace {

using TalIec61850Tools::Cut;
using TalIec61850Tools::escapeText;
using TalIec61850Tools::fitText;
using TalIec61850Tools::Ink;
using TalIec61850Tools::InkColour;
using TalIec61850Tools::Palette;
using TalIec61850Tools::PaletteColour;
using TalIec61850Tools::paletteColours;
using TalIec61850Tools::PixelSpans;
using TalIec61850Tools::svgNumber;
using TalIec61850Tools::SvgWriter;
using TalIec61850Tools::textWidth;
using TalIec61850Tools::Theme;

std::string pictureWith(std::string const& text) {
    SvgWriter svg(100, 50, Palette(Theme::light));
    svg.addWords("title", text);
    svg.add("rect", {{"class", text}});
    svg.addText(1, 2, text, {});
    return svg.take();
}

TEST(SvgWriter, WritesNumbersAsPixels) {
    EXPECT_EQ(svgNumber(0), "0");
    EXPECT_EQ(svgNumber(-0.001), "0");
    EXPECT_EQ(svgNumber(12), "12");
    EXPECT_EQ(svgNumber(12.5), "12.5");
    EXPECT_EQ(svgNumber(12.346), "12.35");
    EXPECT_EQ(svgNumber(-7.1), "-7.1");
    EXPECT_EQ(svgNumber(1200), "1200");
    EXPECT_EQ(svgNumber(std::numeric_limits<double>::quiet_NaN()), "0");
    EXPECT_EQ(svgNumber(std::numeric_limits<double>::infinity()), "0");
}

TEST(SvgWriter, ShowsWhatCouldBeMarkupAsText) {
    for (std::string const text :
         {"</text><script>alert(1)</script>", "]]>", "<![CDATA[x]]>", "\"'&amp;", "<!-- -->",
          "&#x202e;", "<?xml?>", "\xC3\xA4\xE6\xBC\xA2\xF0\x9F\x98\x80"}) {
        SvgReader const svg(pictureWith(text));
        EXPECT_EQ(svg.texts(), std::vector<std::string>{text});
        EXPECT_EQ(svg.root().child("title").child_value(), text);
        EXPECT_EQ(svg.ofClass(text).size(), 1U);
    }
}

TEST(SvgWriter, ReplacesWhatXmlCannotHave) {
    std::string const mark = "\xEF\xBF\xBD";
    EXPECT_EQ(SvgReader(pictureWith("a\x01z")).texts()[0], "a" + mark + "z");
    EXPECT_EQ(SvgReader(pictureWith("a\xFFz")).texts()[0], "a" + mark + "z");
    EXPECT_EQ(SvgReader(pictureWith("\xED\xA0\x80z")).texts()[0], mark + "z");
    EXPECT_EQ(SvgReader(pictureWith("\xC0\x80")).texts()[0], mark + mark);
    EXPECT_EQ(SvgReader(pictureWith("\xEF\xBF\xBF")).texts()[0], mark);
    EXPECT_EQ(SvgReader(pictureWith("\xE6\xBC")).texts()[0], mark + mark);
    EXPECT_EQ(SvgReader(pictureWith("\xF4\x90\x80\x80")).texts()[0], mark);
    EXPECT_EQ(SvgReader(pictureWith("a\nz")).texts()[0], "a z");
}

RC_GTEST_PROP(SvgWriter, WritesAPictureOfAnyOctets, (std::string const& text)) {
    SvgReader const svg(pictureWith(text));
    RC_ASSERT(svg.ofClass("ground").empty());
    RC_ASSERT(svg.root().child("text"));
}

TEST(Palette, HasTheColoursOfThePageOfReport) {
    std::ifstream file(TAL_PAGE_STYLE);
    std::stringstream content;
    content << file.rdbuf();
    std::string const css = content.str();
    std::size_t const dark = css.find("prefers-color-scheme: dark");
    ASSERT_NE(dark, std::string::npos);
    auto const valueAt = [&](std::string_view name, std::size_t from) {
        std::string const mark = "--" + std::string(name) + ": ";
        std::size_t const at = css.find(mark, from) + mark.size();
        return css.substr(at, css.find(';', at) - at);
    };
    auto const cssOf = [](InkColour const& colour) {
        if (colour.opacity == 1) {
            return std::string(colour.hex);
        }
        std::string text = "rgba(";
        for (std::size_t const place : {1U, 3U, 5U}) {
            text +=
                std::to_string(std::stoi(std::string(colour.hex.substr(place, 2)), nullptr, 16)) +
                ", ";
        }
        return text + svgNumber(colour.opacity) + ")";
    };
    for (PaletteColour const& colour : paletteColours()) {
        EXPECT_EQ(cssOf(colour.light), valueAt(colour.name, 0)) << colour.name;
        EXPECT_EQ(cssOf(colour.dark), valueAt(colour.name, dark)) << colour.name;
    }
    EXPECT_EQ(Palette(Theme::dark)[Ink::error], paletteColours()[7].dark);
    EXPECT_EQ(paletteColours()[7].name, "error");
    EXPECT_EQ(paletteColours().back().name, "e");
}

TEST(TextWidth, CutsTextsThatAreTooLong) {
    std::string const name = "AA1J1Q01A1LD0/LLN0$GO$gcb01";
    double const whole = textWidth(name, 12);
    EXPECT_EQ(fitText(name, 12, whole), name);
    for (Cut const cut : {Cut::start, Cut::middle, Cut::end}) {
        for (double width = 20; width < whole; width += 7) {
            std::string const cutName = fitText(name, 12, width, cut);
            EXPECT_LE(textWidth(cutName, 12), width);
            EXPECT_NE(cutName.find("..."), std::string::npos);
        }
    }
    EXPECT_TRUE(fitText(name, 12, 100, Cut::start).ends_with("gcb01"));
    EXPECT_TRUE(fitText(name, 12, 100, Cut::end).starts_with("AA1J1"));
    std::string const middle = fitText(name, 12, 100);
    EXPECT_TRUE(middle.starts_with("AA1") && middle.ends_with("b01")) << middle;
    EXPECT_EQ(fitText(name, 12, 0), "...");
}

TEST(TextWidth, KeepsCharactersWhole) {
    std::string const name = "\xE6\xBC\xA2\xE5\xAD\x97\xC3\xA4\xC3\xB6\xE6\xBC\xA2\xE5\xAD\x97";
    for (double width = 10; width < 80; width += 3) {
        std::string const cut = fitText(name, 12, width);
        EXPECT_EQ(escapeText(cut), cut);
    }
}

TEST(PixelSpans, AreJoinedWhereTheyMeet) {
    PixelSpans pixels(100, 120);
    pixels.add(101.5, 103.2);
    pixels.add(104, 104);
    pixels.add(110, 110);
    pixels.add(90, 95);
    pixels.add(125, 130);
    pixels.add(119.5, 400);
    EXPECT_EQ(pixels.spans(), (std::vector<PixelSpans::Span>{{1, 5}, {10, 11}, {19, 20}}));
    pixels.add(0, 500);
    EXPECT_EQ(pixels.spans(), (std::vector<PixelSpans::Span>{{0, 20}}));
}

}  // namespace
}  // namespace TalTest::SvgWriterTest
