#include "tools/output/TableLines.hpp"

#include <algorithm>
#include <utility>

#include "tools/output/Style.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::string_view kGap = "  ";

}  // namespace

TableLines::TableLines(std::vector<Heading> headings, TextSink sink, bool inColour)
    : headings_(std::move(headings)),
      sink_(std::move(sink)),
      inColour_(inColour),
      widths_(headings_.size(), 0) {}

void TableLines::add(std::vector<std::string> cells) {
    if (!isHolding_) {
        sink_(makeLine(cells) + "\n");
        return;
    }
    held_.push_back(std::move(cells));
    if (held_.size() == kRowsForWidths) {
        writeHeld();
    }
}

void TableLines::finish() {
    if (isHolding_) {
        writeHeld();
    }
}

void TableLines::writeHeld() {
    std::vector<std::string> heads;
    std::transform(headings_.begin(), headings_.end(), std::back_inserter(heads),
                   [](Heading const& heading) { return std::string(heading.text); });
    widen(heads);
    std::for_each(held_.begin(), held_.end(), [&](auto const& cells) { widen(cells); });
    sink_(emphasise(makeLine(heads), inColour_) + "\n");
    for (auto const& cells : std::exchange(held_, {})) {
        sink_(makeLine(cells) + "\n");
    }
    isHolding_ = false;
}

void TableLines::widen(std::vector<std::string> const& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        widths_[i] = std::max(widths_[i], countColumns(cells[i]));
    }
}

std::string TableLines::makeLine(std::vector<std::string> const& cells) const {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        std::size_t const columns = countColumns(cells[i]);
        std::string const blanks(widths_[i] - std::min(columns, widths_[i]), ' ');
        bool const isRight = headings_[i].align == Align::right;
        bool const isLast = i + 1 == cells.size();
        line += isRight ? blanks + cells[i] : cells[i] + (isLast ? "" : blanks);
        line += isLast ? "" : kGap;
    }
    return line;
}

}  // namespace TalIec61850Tools
