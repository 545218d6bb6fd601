#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/output/TextSink.hpp"

namespace TalIec61850Tools {

/// The room that a table has on a terminal.
struct TableRoom {
    /// Of the terminal; no line takes more.
    std::size_t columns = 80;
    /// What is written where characters are left out.
    std::string_view ellipsis = "...";
};

/// Writes a table for people: a line of headings, then one line per row, columns aligned.
///
/// The width of a column is that of its widest cell among the first rows (see kRowsForWidths); they
/// are held back until then, and a wider cell after them moves the rest of its line.
///
/// In a table that has to fit, columns come in the order of their rank. Those without a value in
/// the first rows are left out, and those that there is no room for; wide cells are cut, or go on
/// in the lines below.
class TableLines {
public:
    static constexpr std::size_t kRowsForWidths = 10'000;

    /// @param inColour  bold headings, and cells in the colours of their columns
    /// @param room      not set for a table that is as wide as its cells
    TableLines(std::vector<Heading> headings, TextSink sink, bool inColour,
               std::optional<TableRoom> room = std::nullopt);

    /// @param cells  one for each heading, safe for a terminal
    void add(std::vector<std::string> const& cells);

    /// Writes the rows that are held back, if there are any: the widths of columns are certain
    /// then.
    void flush();

    /// Writes the rows that are held back, or the headings alone.
    void finish();

    /// Aligns a column to the right, in the lines that are not written yet.
    void alignRight(std::size_t column) { headings_[column].align = Align::right; }

    /// The headings of columns that there was no room for; known after `finish`.
    [[nodiscard]] std::vector<std::string> const& withoutRoom() const { return withoutRoom_; }

private:
    /// @return a line, and those below it in which cells go on
    [[nodiscard]] std::string const& makeRow(std::vector<std::string> const& cells);
    /// @param isPainted  whether cells have their colours
    void appendLine(std::vector<std::string> const& cells, bool isPainted);
    [[nodiscard]] bool isWrapped(std::vector<std::string> const& cells, std::size_t column) const;
    void widen(std::vector<std::string> const& cells);
    void writeHeld();
    void fit();
    [[nodiscard]] bool isEmpty(std::size_t column) const;
    [[nodiscard]] std::size_t leastWidth(std::size_t column) const;

    std::vector<Heading> headings_;
    TextSink sink_;
    bool inColour_;
    std::optional<TableRoom> room_;
    bool isHolding_ = true;
    /// The columns that are written, in their order.
    std::vector<std::size_t> shown_;
    std::vector<std::string> withoutRoom_;
    std::vector<std::size_t> widths_;
    std::vector<std::vector<std::string>> held_;
    std::string line_;
};

}  // namespace TalIec61850Tools
