#include "tools/terminal/DotCanvas.hpp"

#include <algorithm>
#include <array>

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kBrailleRows = 4;
constexpr std::size_t kAsciiRows = 3;

/// The bit of a dot in a cell: of Braille, three of each side come first, and then the lowest two.
std::uint8_t dotBit(std::size_t across, std::size_t down, bool isUtf8) {
    constexpr std::array<std::array<std::uint8_t, 2>, kBrailleRows> kBraille = {
        {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}}};
    return isUtf8 ? kBraille[down][across] : static_cast<std::uint8_t>(1U << down);
}

std::string brailleGlyph(std::uint8_t dots) {
    // U+2800 and the dots, as UTF-8.
    return {static_cast<char>(0xE2), static_cast<char>(0xA0U | (dots >> 6U)),
            static_cast<char>(0x80U | (dots & 0x3FU))};
}

}  // namespace

DotCanvas::DotCanvas(std::size_t columns, std::size_t lines, bool isUtf8)
    : columns_(columns),
      lines_(lines),
      isUtf8_(isUtf8),
      across_(dotsAcross(isUtf8)),
      down_(isUtf8 ? kBrailleRows : kAsciiRows),
      cells_(columns * lines, 0) {}

void DotCanvas::setColumn(std::size_t x, std::size_t top, std::size_t bottom) {
    if (x >= width()) {
        return;
    }
    for (std::size_t row = top; row <= bottom && row < height(); ++row) {
        cells_[row / down_ * columns_ + x / across_] |= dotBit(x % across_, row % down_, isUtf8_);
    }
}

void DotCanvas::setSparseRow(std::size_t row) {
    for (std::size_t column = 0; row < height() && column < columns_; ++column) {
        std::uint8_t& dots = cells_[row / down_ * columns_ + column];
        if (dots == 0) {
            dots = dotBit(0, row % down_, isUtf8_);
        }
    }
}

std::string DotCanvas::glyph(std::size_t column, std::size_t line) const {
    std::uint8_t const dots = cell(column, line);
    if (dots == 0) {
        return " ";
    }
    // By the dots from the top: 1, 2, both, 4 and so on.
    constexpr std::string_view kAscii = " '-|.:||";
    return isUtf8_ ? brailleGlyph(dots) : std::string(1, kAscii[dots]);
}

}  // namespace TalIec61850Tools
