#include <gtest/gtest.h>

#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools::TextEscapeTest {
namespace {

using namespace std::string_literals;

TEST(EscapeText, LeavesPrintableTextAlone) {
    EXPECT_EQ(escapeText(""), "");
    EXPECT_EQ(escapeText("RELAY1LD0/LLN0$GO$gcb1 (bay 'A')"), "RELAY1LD0/LLN0$GO$gcb1 (bay 'A')");
    EXPECT_EQ(escapeText("Süd/北"), "Süd/北");
}

TEST(EscapeText, LeavesQuotesAlone) {
    EXPECT_EQ(escapeText(R"(")"), R"(")");
    EXPECT_EQ(escapeText(R"("a""b")"), R"("a""b")");
}

TEST(EscapeText, NamesLineEndsAndTabs) { EXPECT_EQ(escapeText("a\nb\tc\rd"), R"(a\nb\tc\rd)"); }

TEST(EscapeText, NumbersOtherControlCharacters) {
    EXPECT_EQ(escapeText("\0\a\x1b[31m\x1f\x7f"s), R"(\x00\x07\x1b[31m\x1f\x7f)");
}

TEST(EscapeText, LetsNoControlCharacterThrough) {
    for (int c = 0; c < 256; ++c) {
        for (char const shown : escapeText(std::string(1, static_cast<char>(c)))) {
            EXPECT_GE(shown, ' ') << "from octet " << c;
            EXPECT_LT(shown, '\x7f') << "from octet " << c;
        }
    }
}

TEST(EscapeText, EscapesC1ControlsWrittenAsUtf8) {
    EXPECT_EQ(escapeText("a\xc2\x9b"
                         "31m"),
              R"(a\x9b31m)");
}

TEST(EscapeText, EscapesCharactersThatTurnTheWritingDirection) {
    EXPECT_EQ(escapeText("a\u202egnp.pcap"), R"(a\u202egnp.pcap)");
}

TEST(EscapeText, ShowsOctetsThatAreNoUtf8ByNumber) {
    EXPECT_EQ(escapeText("\xff"), R"(\xff)");
    EXPECT_EQ(escapeText("caf\xe9.pcap"), R"(caf\xe9.pcap)");
    EXPECT_EQ(escapeText("cut \xe5\x8c"), R"(cut \xe5\x8c)");
    EXPECT_EQ(escapeText("\xed\xa0\x80"), R"(\xed\xa0\x80)");  // half of a surrogate pair
}

TEST(EscapeText, DoublesBackslashesSoThatNothingReadsLikeAnEscape) {
    EXPECT_EQ(escapeText(R"(a\n)"), R"(a\\n)");
    EXPECT_NE(escapeText("a\n"), escapeText(R"(a\n)"));
}

TEST(CountColumns, CountsCharactersNotOctets) {
    EXPECT_EQ(countColumns(""), 0U);
    EXPECT_EQ(countColumns("abc"), 3U);
    EXPECT_EQ(countColumns("Süd"), 3U);
}

TEST(KeepEnd, LeavesWhatFits) {
    EXPECT_EQ(keepEnd("bay1.pcap", 9), "bay1.pcap");
    EXPECT_EQ(keepEnd("", 0), "");
}

TEST(KeepEnd, CutsTheBeginningOff) {
    EXPECT_EQ(keepEnd("/captures/bay1.pcap", 12), "...bay1.pcap");
    EXPECT_EQ(keepEnd("bay1.pcap", 8), "....pcap");
}

TEST(KeepEnd, NeverTakesMoreThanThereIs) {
    std::string const name = "/räume/bäy1/北.pcap";
    for (std::size_t columns = 0; columns < 30; ++columns) {
        EXPECT_LE(countColumns(keepEnd(name, columns)), columns);
    }
    EXPECT_EQ(keepEnd(name, 2), "..");
}

TEST(KeepEnd, CutsBetweenCharacters) {
    EXPECT_EQ(keepEnd("aaaüü", 5), "...ü");
    EXPECT_EQ(keepEnd("aaaüü", 4), "...");
}

}  // namespace
}  // namespace TalIec61850Tools::TextEscapeTest
