#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/output/TextSink.hpp"

namespace TalIec61850Tools {

/// Writes a table for people: a line of headings, then one line per row, columns aligned.
///
/// The width of a column is that of its widest cell among the first rows (see kRowsForWidths); they
/// are held back until then, and a wider cell after them moves the rest of its line.
class TableLines {
public:
    static constexpr std::size_t kRowsForWidths = 10'000;

    /// @param inColour  bold headings
    TableLines(std::vector<Heading> headings, TextSink sink, bool inColour);

    /// @param cells  one for each heading, safe for a terminal
    void add(std::vector<std::string> cells);

    /// Writes the rows that are held back.
    void finish();

private:
    [[nodiscard]] std::string makeLine(std::vector<std::string> const& cells) const;
    void widen(std::vector<std::string> const& cells);
    void writeHeld();

    std::vector<Heading> headings_;
    TextSink sink_;
    bool inColour_;
    bool isHolding_ = true;
    std::vector<std::size_t> widths_;
    std::vector<std::vector<std::string>> held_;
};

}  // namespace TalIec61850Tools
