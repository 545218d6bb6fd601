// Tables longer than what their widths are taken from.

#include <gtest/gtest.h>

#include "tools/StreamsTraffic.hpp"
#include "tools/output/TableLines.hpp"

namespace TalIec61850Tools::TableLinesTest {
namespace {

constexpr std::size_t kHeld = TableLines::kRowsForWidths;

/// A table of a name and a number, made row by row.
class TwoColumns {
public:
    void add(std::string name, std::string number) {
        table_.add({std::move(name), std::move(number)});
    }
    void finish() { table_.finish(); }
    [[nodiscard]] std::string const& text() const { return text_; }

private:
    std::string text_;
    TableLines table_{{{"NAME", Align::left}, {"N", Align::right}},
                      [this](std::string_view piece) { text_ += piece; },
                      false};
};

TEST(Table, IsHeldBackUntilItsWidthsAreKnown) {
    TwoColumns table;
    for (std::size_t i = 1; i < kHeld; ++i) {
        table.add("a", "1");
    }
    EXPECT_EQ(table.text(), "");
    table.add("longest", "1");
    EXPECT_EQ(TalTest::linesOf(table.text()).size(), kHeld + 1);
    table.add("b", "2");
    EXPECT_TRUE(table.text().ends_with("longest  1\nb        2\n"));
    auto const before = table.text();
    table.finish();
    EXPECT_EQ(table.text(), before);
}

TEST(Table, PushesTheRestOfALineBehindAWiderCell) {
    TwoColumns table;
    for (std::size_t i = 0; i < kHeld; ++i) {
        table.add("abcde", "12");
    }
    table.add("abcdefgh", "1");
    table.add("a", "12345");
    table.finish();
    EXPECT_TRUE(table.text().starts_with("NAME    N\nabcde  12\n"));
    EXPECT_TRUE(table.text().ends_with("abcde  12\nabcdefgh   1\na      12345\n"));
}

TEST(Table, OfExactlySoManyRowsAndOneFewerAndMoreHasEachOnce) {
    for (std::size_t const rows : {kHeld - 1, kHeld, kHeld + 1}) {
        TwoColumns table;
        for (std::size_t i = 0; i < rows; ++i) {
            table.add("row", std::to_string(i));
        }
        table.finish();
        auto const lines = TalTest::linesOf(table.text());
        ASSERT_EQ(lines.size(), rows + 1);
        EXPECT_TRUE(lines[rows].ends_with(" " + std::to_string(rows - 1)));
        for (auto const& line : lines) {
            EXPECT_FALSE(line.ends_with(' '));
        }
    }
}

TEST(Table, CountsCharactersNotOctets) {
    TwoColumns table;
    table.add("Süd", "1");
    table.add("West", "22");
    table.finish();
    EXPECT_EQ(table.text(), "NAME   N\nSüd    1\nWest  22\n");
}

}  // namespace
}  // namespace TalIec61850Tools::TableLinesTest
