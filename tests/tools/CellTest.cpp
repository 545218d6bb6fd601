// Values of fields, as the formats write them.

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "tools/output/Cell.hpp"
#include "tools/output/RowLines.hpp"

namespace TalIec61850Tools::CellTest {
namespace {

std::string csv(Cell const& cell) {
    TextLine line;
    line.append('<');
    appendCsv(line, cell);
    return std::string(line.view().substr(1));
}

std::string json(Cell const& cell) {
    TextLine line;
    line.append('<');
    appendJson(line, cell);
    return std::string(line.view().substr(1));
}

std::string table(Cell const& cell) {
    TextLine line;
    line.append('<');
    appendTable(line, cell);
    return std::string(line.view().substr(1));
}

std::string csv(char const* text) { return csv(Cell(std::string_view(text))); }
std::string table(char const* text) { return table(Cell(std::string_view(text))); }

TEST(Cell, IsAbsentUnlessItHasAValue) {
    for (Cell const& cell : {Cell(), Cell(std::nullopt), Cell(std::optional<std::string>()),
                             Cell(std::optional<std::uint8_t>())}) {
        EXPECT_TRUE(cell.isAbsent());
        EXPECT_EQ(csv(cell), "");
        EXPECT_EQ(json(cell), "null");
        EXPECT_EQ(table(cell), "-");
    }
}

TEST(Cell, OfANumberIsItsDigits) {
    EXPECT_EQ(csv(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(json(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(csv(std::uint8_t{7}), "7");
    EXPECT_EQ(csv(std::int8_t{-7}), "-7");
    EXPECT_EQ(table(std::optional<std::uint16_t>(0)), "0");
    EXPECT_TRUE(Cell(0).isNumber());
    EXPECT_TRUE(Cell(0.5).isNumber());
    EXPECT_FALSE(Cell(std::string_view("0")).isNumber());
    EXPECT_FALSE(Cell(true).isNumber());
}

TEST(Cell, OfTruthIsAWord) {
    EXPECT_EQ(csv(true), "true");
    EXPECT_EQ(json(false), "false");
    EXPECT_EQ(table(std::optional<bool>(false)), "false");
}

TEST(Cell, OfAFractionIsWhatJsonMakesOfIt) {
    for (double const number : {0.0, -0.0, 0.5, 100.0, 1e22, 1e-9, 6797.621, 1.0 / 3,
                                std::numeric_limits<double>::max()}) {
        EXPECT_EQ(json(number), nlohmann::json(number).dump());
        EXPECT_EQ(csv(number), nlohmann::json(number).dump());
    }
    EXPECT_EQ(json(std::numeric_limits<double>::infinity()), "null");
}

std::vector<std::string> texts() {
    std::vector<std::string> all = {"",
                                    "plain",
                                    "a,b",
                                    "\"",
                                    "\\",
                                    "a\r\nb",
                                    "\x1b[m",
                                    "Süd",
                                    "\u202etxt",
                                    "a\xff\xe5",
                                    "\x7f",
                                    "a b",
                                    std::string("\0", 1)};
    for (int c = 0; c < 256; ++c) {
        all.push_back("x" + std::string(1, static_cast<char>(c)));
    }
    return all;
}

TEST(Cell, OfATextIsTheSameTextInJson) {
    using Json = nlohmann::json;
    for (auto const& text : texts()) {
        EXPECT_EQ(json(text), Json(text).dump(-1, ' ', true, Json::error_handler_t::replace));
    }
}

TEST(Cell, OfATextIsOneSafeLineInCsvAndTable) {
    EXPECT_EQ(csv("a\r\n\x1b"), R"(a\r\n\x1b)");
    EXPECT_EQ(csv(R"(say "a",b)"), R"("say ""a"",b")");
    EXPECT_EQ(csv(""), R"("")");
    EXPECT_EQ(csv(R"(\)"), R"(\\)");
    EXPECT_EQ(table(""), R"("")");
    EXPECT_EQ(table("a\"b,c"), "a\"b,c");
    EXPECT_EQ(table("\xff"), R"(\xff)");
    for (auto const& text : texts()) {
        EXPECT_EQ(csv(text).find('\n'), std::string::npos);
        EXPECT_EQ(table(text).find('\x1b'), std::string::npos);
    }
}

TEST(Cell, KeepsATextThatIsMadeForIt) {
    std::vector<Cell> cells;
    for (int i = 0; i < 3; ++i) {
        std::string const text(40, static_cast<char>('a' + i));
        cells.emplace_back(std::string(text));
        cells.emplace_back(std::optional<std::string>(text));
        cells.emplace_back(ShortText(text));
    }
    EXPECT_EQ(csv(cells[0]), std::string(40, 'a'));
    EXPECT_EQ(csv(cells[7]), std::string(40, 'c'));
    EXPECT_EQ(csv(cells[8]), std::string(ShortText::kCapacity, 'c'));
}

TEST(Cell, OfANumberHasAllItsDigits) {
    for (std::uint64_t const number :
         {std::uint64_t{0}, std::uint64_t{4294967295}, std::uint64_t{4294967296},
          std::uint64_t{18446744073709551615U}}) {
        EXPECT_EQ(csv(number), std::to_string(number));
        EXPECT_EQ(json(number), std::to_string(number));
    }
    EXPECT_EQ(csv(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(Cell, OfJsonIsItselfAndInCsvATextBetweenQuotes) {
    Cell const cell(JsonText{R"({"a":[1,"\n"]})"});
    EXPECT_EQ(json(cell), R"({"a":[1,"\n"]})");
    EXPECT_EQ(csv(cell), R"("{""a"":[1,""\n""]}")");
    EXPECT_EQ(csv(JsonText{"[1]"}), "[1]");
}

/// A row of a number, and of a part that rows may share.
struct Part {
    std::string name;
};
struct Row {
    int number = 0;
    Part const* part = nullptr;
};

RowLayout<Row> rowLayout(int& made) {
    RowLayout<Row> layout;
    layout.fields = {{"number", [](Row const& row) -> Cell { return row.number; }}};
    std::vector<Field<Part>> const partFields = {{"name", [&made](Part const& part) -> Cell {
                                                      ++made;
                                                      return part.name;
                                                  }}};
    appendFields<Row, Part>(
        layout.fields, partFields, [](Row const& row) -> Part const& { return *row.part; },
        [](Row const& row) -> void const* { return row.part; });
    layout.fields.push_back({"last", [](Row const& row) -> Cell { return row.number + 1; }});
    return layout;
}

TEST(RowLines, MakeTheTextOfASharedPartOnce) {
    int made = 0;
    std::vector<Part> const parts = {{"a"}, {"b,c"}};
    RowLines<Row> lines(Format::csv, rowLayout(made));
    std::string text;
    for (int i = 0; i < 6; ++i) {
        text += lines.lineOf({.number = i, .part = &parts[static_cast<std::size_t>(i % 2)]});
    }
    EXPECT_EQ(text, "0,a,1\n1,\"b,c\",2\n2,a,3\n3,\"b,c\",4\n4,a,5\n5,\"b,c\",6\n");
    EXPECT_EQ(made, 2);
}

TEST(RowLines, MakeTheTextOfASharedPartAnewWhereItMayBeAnother) {
    int made = 0;
    Part part{"a"};
    RowLines<Row> lines(Format::csv, rowLayout(made));
    EXPECT_EQ(lines.lineOf({.number = 0, .part = &part}), "0,a,1\n");
    lines.forgetShared();
    part.name = "b";
    EXPECT_EQ(lines.lineOf({.number = 1, .part = &part}), "1,b,2\n");
}

TEST(RowLines, AreObjectsInJson) {
    int made = 0;
    Part const part{"\"a\""};
    RowLines<Row> lines(Format::json, rowLayout(made));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(lines.lineOf({.number = -1, .part = &part}),
                  "{\"number\":-1,\"name\":\"\\\"a\\\"\",\"last\":0}\n");
    }
    EXPECT_EQ(RowLines<Row>::heading(Format::json, rowLayout(made)), "");
    EXPECT_EQ(RowLines<Row>::heading(Format::csv, rowLayout(made)), "number,name,last\n");
}

}  // namespace
}  // namespace TalIec61850Tools::CellTest
