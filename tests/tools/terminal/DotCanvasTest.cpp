#include <gtest/gtest.h>

#include <string>

#include "tools/terminal/DotCanvas.hpp"

namespace TalIec61850Tools::DotCanvasTest {
namespace {

std::string lineOf(DotCanvas const& canvas, std::size_t columns, std::size_t line) {
    std::string text;
    for (std::size_t column = 0; column < columns; ++column) {
        text += canvas.glyph(column, line);
    }
    return text;
}

TEST(DotCanvas, HasTwoByFourDotsInABrailleCharacter) {
    DotCanvas canvas(3, 2, true);
    EXPECT_EQ(canvas.width(), 6U);
    EXPECT_EQ(canvas.height(), 8U);
    canvas.setColumn(0, 0, 0);
    canvas.setColumn(1, 3, 3);
    canvas.setColumn(2, 0, 3);
    canvas.setColumn(5, 2, 4);
    EXPECT_EQ(lineOf(canvas, 3, 0), "\u2881\u2847\u28A0");
    EXPECT_EQ(lineOf(canvas, 3, 1), "  \u2808");
    EXPECT_TRUE(canvas.isEmpty(0, 1));
    EXPECT_FALSE(canvas.isEmpty(0, 0));
}

TEST(DotCanvas, HasEveryDotOfABrailleCharacterInItsPlace) {
    std::string const glyphs[2][4] = {{"\u2801", "\u2802", "\u2804", "\u2840"},
                                      {"\u2808", "\u2810", "\u2820", "\u2880"}};
    for (std::size_t x = 0; x < 2; ++x) {
        for (std::size_t y = 0; y < 4; ++y) {
            DotCanvas canvas(1, 1, true);
            canvas.setColumn(x, y, y);
            EXPECT_EQ(canvas.glyph(0, 0), glyphs[x][y]);
        }
    }
}

TEST(DotCanvas, HasThreeDotsInACharacterOfAscii) {
    DotCanvas canvas(8, 1, false);
    EXPECT_EQ(canvas.width(), 8U);
    EXPECT_EQ(canvas.height(), 3U);
    for (std::size_t x = 0; x < 3; ++x) {
        canvas.setColumn(x, x, x);
    }
    canvas.setColumn(3, 0, 1);
    canvas.setColumn(4, 1, 2);
    canvas.setColumn(5, 0, 2);
    canvas.setColumn(6, 0, 0);
    canvas.setColumn(6, 2, 2);
    EXPECT_EQ(lineOf(canvas, 8, 0), "'-.|||: ");
}

TEST(DotCanvas, PassesOverWhatIsNotOnIt) {
    DotCanvas canvas(1, 1, true);
    canvas.setColumn(2, 0, 3);
    canvas.setColumn(0, 4, 9);
    canvas.setSparseRow(4);
    EXPECT_TRUE(canvas.isEmpty(0, 0));
    canvas.setColumn(0, 3, 100);
    EXPECT_EQ(canvas.glyph(0, 0), "\u2840");
}

TEST(DotCanvas, DrawsASparseRowWhereThereAreNoDots) {
    DotCanvas canvas(3, 1, true);
    canvas.setColumn(2, 0, 0);
    canvas.setSparseRow(2);
    EXPECT_EQ(lineOf(canvas, 3, 0), "\u2804\u2801\u2804");
}

}  // namespace
}  // namespace TalIec61850Tools::DotCanvasTest
