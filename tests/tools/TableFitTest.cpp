// Tables that fit a terminal, and the fields that are chosen for any format.

#include <gtest/gtest.h>

#include <algorithm>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/output/TableLines.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalTest::TableFitTest {
namespace {

using TalIec61850Tools::Align;
using TalIec61850Tools::countColumns;
using TalIec61850Tools::Cut;
using TalIec61850Tools::Heading;
using TalIec61850Tools::shorten;
using TalIec61850Tools::TableLines;
using TalIec61850Tools::TableRoom;

constexpr std::string_view kDots = "...";
constexpr std::string_view kOneCharacter = "\u2026";

TEST(Shorten, KeepsWhatFits) {
    for (Cut const cut : {Cut::start, Cut::middle, Cut::end}) {
        EXPECT_EQ(shorten("abcdef", 6, cut, kDots), "abcdef");
        EXPECT_EQ(shorten("", 0, cut, kDots), "");
    }
}

TEST(Shorten, LeavesCharactersOutWhereItIsTold) {
    EXPECT_EQ(shorten("abcdefghij", 8, Cut::start, kDots), "...fghij");
    EXPECT_EQ(shorten("abcdefghij", 8, Cut::middle, kDots), "abc...ij");
    EXPECT_EQ(shorten("abcdefghij", 8, Cut::end, kDots), "abcde...");
    EXPECT_EQ(shorten("abcdefghij", 8, Cut::middle, kOneCharacter), "abcd\u2026hij");
}

TEST(Shorten, NeverTakesMoreColumnsThanAllowed) {
    std::string const text = "S\u00fcd \u4e2d\u6587 \u4e2d\u6587 end";
    for (Cut const cut : {Cut::start, Cut::middle, Cut::end}) {
        for (auto const mark : {kDots, kOneCharacter}) {
            for (std::size_t columns = 0; columns <= 20; ++columns) {
                EXPECT_LE(countColumns(shorten(text, columns, cut, mark)), columns);
            }
        }
    }
    EXPECT_EQ(countColumns("\u4e2d\u6587"), 4U);
    EXPECT_EQ(countColumns("S\u00fcd"), 3U);
    EXPECT_EQ(countColumns("Su\u0308d"), 3U);
}

using Cells = std::vector<std::string>;

/// What a table of these rows looks like.
Cells tableOf(std::vector<Heading> const& headings, std::vector<Cells> const& rows,
              std::size_t columns, Cells* withoutRoom = nullptr) {
    std::string text;
    TableLines table(
        headings, [&](std::string_view piece) { text += piece; }, false,
        TableRoom{.columns = columns, .ellipsis = kDots});
    for (auto const& row : rows) {
        table.add(row);
    }
    table.finish();
    if (withoutRoom != nullptr) {
        *withoutRoom = table.withoutRoom();
    }
    return linesOf(text);
}

std::vector<Heading> const kHeadings = {{"N", Align::right, {.rank = 1}},
                                        {"NAME", Align::left, {.rank = 0, .least = 6}},
                                        {"REST", Align::left, {.rank = 2, .least = 4}}};

TEST(FittedTable, HasItsColumnsByRank) {
    EXPECT_EQ(tableOf(kHeadings, {{"1", "abc", "x"}, {"22", "d", "yy"}}, 80),
              (Cells{"NAME   N  REST", "abc    1  x", "d     22  yy"}));
}

TEST(FittedTable, LeavesColumnsWithoutAnyValueOut) {
    EXPECT_EQ(tableOf(kHeadings, {{"-", "abc", "-"}, {"-", "-", "yy"}}, 80),
              (Cells{"NAME  REST", "abc   -", "-     yy"}));
    EXPECT_EQ(tableOf(kHeadings, {}, 80), Cells{"NAME  N  REST"});
    auto kept = kHeadings;
    kept[0].fit.isShownEmpty = true;
    EXPECT_EQ(tableOf(kept, {{"-", "a", "-"}}, 80), (Cells{"NAME  N", "a     -"}));
}

TEST(FittedTable, CutsWideCellsAndSharesTheRoom) {
    Cells const row = {"1", std::string(20, 'a'), std::string(20, 'b')};
    EXPECT_EQ(tableOf(kHeadings, {row}, 46),
              (Cells{"NAME                  N  REST",
                     std::string(20, 'a') + "  1  " + std::string(20, 'b')}));
    EXPECT_EQ(tableOf(kHeadings, {row}, 25),
              (Cells{"NAME         N  REST", "aaaaaaaa...  1  bbbbbb..."}));
    EXPECT_EQ(tableOf(kHeadings, {row}, 15), (Cells{"NAME    N  REST", "aaa...  1  bbbb"}));
}

TEST(FittedTable, NamesTheColumnsThatThereIsNoRoomFor) {
    Cells const row = {"1", std::string(20, 'a'), std::string(20, 'b')};
    Cells withoutRoom;
    EXPECT_EQ(tableOf(kHeadings, {row}, 14, &withoutRoom),
              (Cells{"NAME         N", "aaaaaaaa...  1"}));
    EXPECT_EQ(withoutRoom, Cells{"REST"});
    static_cast<void>(tableOf(kHeadings, {row}, 15, &withoutRoom));
    EXPECT_EQ(withoutRoom, Cells{});
}

TEST(FittedTable, IsNeverWiderThanItsRoom) {
    for (std::size_t columns = 1; columns < 60; ++columns) {
        std::vector<Cells> rows(TableLines::kRowsForWidths, Cells{"1", "abcdefghij", "x"});
        // Too late to be known when the widths are chosen.
        rows.push_back({"12345678901234567890", std::string(90, 'a'), std::string(90, 'b')});
        for (auto const& line : tableOf(kHeadings, rows, columns)) {
            ASSERT_LE(countColumns(line), columns) << line;
        }
    }
}

std::vector<Heading> const kSentences = {
    {"N", Align::right, {.rank = 0}},
    {"TEXT", Align::left, {.rank = 1, .least = 8, .wraps = true}},
    {"END", Align::left, {.rank = 2}}};

TEST(FittedTable, GoesOnBelowWithSentences) {
    EXPECT_EQ(
        tableOf(kSentences, {{"1", "one two three four", "x"}, {"2", "five", "y"}}, 17),
        (Cells{"N  TEXT       END", "1  one two    x", "   three", "   four", "2  five       y"}));
    EXPECT_EQ(tableOf(kSentences, {{"1", "one two three four", "x"}}, 80),
              (Cells{"N  TEXT                END", "1  one two three four  x"}));
}

TEST(FittedTable, BreaksAWordThatIsWiderThanItsColumn) {
    EXPECT_EQ(tableOf(kSentences, {{"1", "a bcdefghijklmnopq", "x"}}, 16),
              (Cells{"N  TEXT      END", "1  a         x", "   bcdefghi", "   jklmnopq"}));
}

TEST(FittedTable, HasNoMoreThanEightLinesOfASentence) {
    std::string const eight = "aaaaaaaa bbbbbbbb cccccccc dddddddd eeeeeeee ffffffff gggggggg ";
    auto const whole = tableOf(kSentences, {{"1", eight + "hhhhhhhh", "-"}}, 11);
    ASSERT_EQ(whole.size(), 9U);
    EXPECT_EQ(whole.back(), "   hhhhhhhh");
    auto const cut = tableOf(kSentences, {{"1", eight + "hhhhhhhh i", "-"}}, 11);
    ASSERT_EQ(cut.size(), 9U);
    EXPECT_EQ(cut.back(), "   hhhhh...");
}

TEST(FittedTable, OfSentencesIsNeverWiderThanItsRoom) {
    Cells const row = {"1", "S\u00fcd \u4e2d\u6587\u4e2d\u6587 abcdefghijklmnop end", "x"};
    for (std::size_t columns = 1; columns < 60; ++columns) {
        for (auto const& line : tableOf(kSentences, {row}, columns)) {
            ASSERT_LE(countColumns(line), columns) << line;
            ASSERT_FALSE(line.ends_with(' ')) << line;
        }
    }
}

/// What a command writes to a terminal.
ProcessResult onTerminal(Arguments const& command, int columns, std::string const& locale = "C") {
    auto const result =
        runCompanion(command, {.output = StandardOutputIs::terminal,
                               .outputColumns = columns,
                               .environment = {{"NO_COLOR", "1"}, {"LC_ALL", locale}}});
    EXPECT_EQ(result.status, 0);
    return result;
}

/// Traffic with names that are wider than any terminal.
Bytes longNames() {
    CaptureBuilder capture;
    std::string const name = "STATION_BAY1_PROTECTION_LD0/LLN0$GO$gcb" + std::string(90, 'x');
    capture.add(1, 0, oneGoose(name + "1")).add(2, 0, oneGoose(name + "2"));
    return capture.add(3, 0, oneSv("MU01")).bytes();
}

TEST(TablesOnATerminal, FitItsWidth) {
    TempFile const capture(longNames());
    for (std::string const command :
         {"streams", "packets", "captures", "library streams", "library judge",
          "library judge --list", "packets --context --from +1s",
          "show --columns time,goose,protocol"}) {
        for (int const columns : {20, 40, 80, 120, 200}) {
            auto const text =
                onTerminal(joined(commandWords(command), {capture.path()}), columns, "C.UTF-8").out;
            EXPECT_GT(linesOf(text).size(), 3U);
            for (auto const& line : linesOf(text)) {
                bool const isOneWord = line.find(' ') == std::string::npos;
                EXPECT_TRUE(isOneWord || countColumns(line) <= static_cast<std::size_t>(columns))
                    << command << " " << columns << "\n"
                    << line;
            }
        }
    }
}

TEST(TablesOnATerminal, BeginWithWhatIdentifiesAStream) {
    TempFile const capture(longNames());
    auto const lines = linesOf(onTerminal({"streams", capture.path()}, 80).out);
    EXPECT_TRUE(lines[0].starts_with("PROTO  SVID/GOCBREF ")) << lines[0];
    EXPECT_NE(lines[1].find("..."), std::string::npos);
    EXPECT_EQ(lines[0].find("HSR"), std::string::npos);
    auto const modern = onTerminal({"streams", capture.path()}, 80, "de_DE.utf8").out;
    EXPECT_NE(modern.find("\u2026"), std::string::npos);
    EXPECT_EQ(modern.find("..."), std::string::npos);
}

TEST(TablesOnATerminal, NameWhatTheyLeaveOutUnlessQuiet) {
    TempFile const capture(smallCapture());
    auto const text = onTerminal({"streams", capture.path()}, 60).out;
    EXPECT_NE(text.find("\nno room for "), std::string::npos) << text;
    EXPECT_NE(text.find("--wide"), std::string::npos);
    EXPECT_EQ(onTerminal({"streams", "-q", capture.path()}, 60).out.find("no room for"),
              std::string::npos);
}

TEST(TablesOnATerminal, AreWholeIfWide) {
    TempFile const capture(longNames());
    for (std::string const command : {"streams", "packets"}) {
        EXPECT_EQ(onTerminal({command, "--wide", capture.path()}, 80).out,
                  runCompanion({command, capture.path()}).out);
    }
}

TEST(TablesElsewhere, AreWhole) {
    TempFile const capture(longNames());
    TempDir const folder;
    auto const whole = runCompanion({"streams", capture.path()}).out;
    EXPECT_NE(whole.find(std::string(90, 'x')), std::string::npos);
    EXPECT_EQ(onTerminal({"streams", capture.path(), "-o", folder.file("out")}, 80).out, "");
    auto const written = readFile(folder.file("out"));
    EXPECT_EQ(std::string(written.begin(), written.end()), whole);
}

TEST(MachineFormats, AreWholeOnATerminalToo) {
    TempFile const capture(longNames());
    for (std::string const format : {"csv", "json"}) {
        EXPECT_EQ(onTerminal({"streams", "-f", format, capture.path()}, 40).out,
                  runCompanion({"streams", "-f", format, capture.path()}).out);
    }
}

TEST(ChosenColumns, AreThoseFieldsInThatOrderInEveryFormat) {
    TempFile const capture(smallCapture());
    Arguments const command = {"streams", capture.path(), "-q", "--columns"};
    auto const write = [&](std::string const& columns, std::string const& format) {
        auto const result = runCompanion(joined(command, {columns, "-f", format}));
        EXPECT_EQ(result.err, "");
        return result.out;
    };
    EXPECT_EQ(write("packets,svID,appId", "csv"), "packets,svID,appId\n2,,0x0001\n3,MU01,0x4000\n");
    EXPECT_EQ(write("packets,svID", "json"),
              "{\"packets\":2,\"svID\":null}\n{\"packets\":3,\"svID\":\"MU01\"}\n");
    EXPECT_EQ(write("packets,svID,appId", "table"),
              "PACKETS  SVID   APPID\n      2  -     0x0001\n      3  MU01  0x4000\n");
    EXPECT_EQ(write("PACKETS,SvId", "csv"), write("packets,svID", "csv"));
    EXPECT_EQ(write("firstTimeNs,files", "table"),
              "        FIRSTTIMENS  FILES\n1700000000123456789      1\n"
              "1700000000000000001      1\n");
}

TEST(ChosenColumns, MakeRowsOfWhatIsShown) {
    TempFile const capture(smallCapture());
    auto const show =
        runCompanion({"show", "-q", capture.path(), "--columns", "position,protocol"});
    EXPECT_TRUE(show.out.starts_with("POSITION  PROTOCOL\n")) << show.out;
    EXPECT_EQ(linesOf(show.out).size(), 6U);
}

TEST(ChosenColumns, ThatDoNotExistAreRefusedWithWhatMayBeMeant) {
    TempFile const capture(smallCapture());
    EXPECT_EQ(runCompanion({"packets", capture.path(), "--columns", "time,svld"}).err,
              complaint("--columns: there is no field svld; did you mean svID?"));
    expectUsageError({"library", "judge", capture.path(), "--columns", "time"});
    EXPECT_EQ(
        runCompanion({"library", "judge", "-q", "-l", capture.path(), "--columns", "time"}).status,
        0);
}

}  // namespace
}  // namespace TalTest::TableFitTest
