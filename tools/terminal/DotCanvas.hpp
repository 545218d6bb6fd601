#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

/// Dots in the cells of a terminal: two by four in each as a Braille character, or one by three as
/// a character of ASCII.
class DotCanvas {
public:
    /// @param columns  cells in a line
    /// @param lines    lines of cells
    /// @param isUtf8   Braille characters; else ASCII
    DotCanvas(std::size_t columns, std::size_t lines, bool isUtf8);

    /// Dots side by side in a cell.
    [[nodiscard]] static constexpr std::size_t dotsAcross(bool isUtf8) { return isUtf8 ? 2 : 1; }

    /// Dots from left to right, and from top to bottom.
    [[nodiscard]] std::size_t width() const { return columns_ * across_; }
    [[nodiscard]] std::size_t height() const { return lines_ * down_; }

    /// Sets the dots of a column from one row to another, both with it; those that are not on the
    /// canvas are passed over.
    /// @param x  from the left, from 0
    /// @param top, bottom  from the top, from 0
    void setColumn(std::size_t x, std::size_t top, std::size_t bottom);

    /// Sets the first dot of each cell of a row that has no dot yet.
    /// @param row  of dots, from the top
    void setSparseRow(std::size_t row);

    /// Whether a cell has no dots.
    [[nodiscard]] bool isEmpty(std::size_t column, std::size_t line) const {
        return cell(column, line) == 0;
    }
    /// The character of a cell; a blank without dots.
    [[nodiscard]] std::string glyph(std::size_t column, std::size_t line) const;

private:
    [[nodiscard]] std::uint8_t cell(std::size_t column, std::size_t line) const {
        return cells_[line * columns_ + column];
    }

    std::size_t columns_;
    std::size_t lines_;
    bool isUtf8_;
    std::size_t across_;
    std::size_t down_;
    /// Line after line, a bit for each dot: as in Braille characters, or the topmost first.
    std::vector<std::uint8_t> cells_;
};

}  // namespace TalIec61850Tools
