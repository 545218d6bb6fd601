#include "tools/output/TableLines.hpp"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

#include "tools/output/Style.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::string_view kGap = "  ";

}  // namespace

TableLines::TableLines(std::vector<Heading> headings, TextSink sink, bool inColour,
                       std::optional<TableRoom> room)
    : headings_(std::move(headings)),
      sink_(std::move(sink)),
      inColour_(inColour),
      room_(room),
      shown_(headings_.size()),
      widths_(headings_.size(), 0) {
    std::iota(shown_.begin(), shown_.end(), std::size_t{0});
}

void TableLines::add(std::vector<std::string> const& cells) {
    if (!isHolding_) {
        sink_(makeLine(cells));
        return;
    }
    held_.push_back(cells);
    if (held_.size() == kRowsForWidths) {
        writeHeld();
    }
}

void TableLines::flush() {
    if (!held_.empty()) {
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
                   [](Heading const& heading) { return heading.text; });
    widen(heads);
    std::for_each(held_.begin(), held_.end(), [&](auto const& cells) { widen(cells); });
    if (room_) {
        fit();
    }
    std::string head = makeLine(heads, false);
    head.pop_back();
    sink_(emphasise(head, inColour_) + "\n");
    for (auto const& cells : std::exchange(held_, {})) {
        sink_(makeLine(cells));
    }
    isHolding_ = false;
}

void TableLines::widen(std::vector<std::string> const& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        widths_[i] = std::max(widths_[i], countColumns(cells[i]));
    }
}

bool TableLines::isEmpty(std::size_t column) const {
    return !held_.empty() && !headings_[column].fit.isShownEmpty &&
           std::all_of(held_.begin(), held_.end(),
                       [&](auto const& cells) { return cells[column] == kAbsentCell; });
}

std::size_t TableLines::leastWidth(std::size_t column) const {
    Heading const& heading = headings_[column];
    std::size_t const least = heading.fit.least == 0
                                  ? widths_[column]
                                  : std::max(heading.fit.least, countColumns(heading.text));
    return std::min({widths_[column], least, room_->columns});
}

void TableLines::fit() {
    std::erase_if(shown_, [&](std::size_t column) { return isEmpty(column); });
    std::stable_sort(shown_.begin(), shown_.end(), [&](std::size_t a, std::size_t b) {
        return headings_[a].fit.rank < headings_[b].fit.rank;
    });
    std::vector<std::size_t> fitting;
    std::size_t used = 0;
    for (std::size_t const column : shown_) {
        std::size_t const more = leastWidth(column) + (fitting.empty() ? 0 : kGap.size());
        if (used + more <= room_->columns) {
            used += more;
            fitting.push_back(column);
        } else {
            withoutRoom_.push_back(headings_[column].text);
        }
    }
    shown_ = std::move(fitting);
    // What is left of the room is shared, one after the other.
    auto const wanted = widths_;
    for (std::size_t const column : shown_) {
        widths_[column] = leastWidth(column);
    }
    for (bool isGrowing = true; isGrowing && used < room_->columns;) {
        isGrowing = false;
        for (std::size_t const column : shown_) {
            if (widths_[column] < wanted[column] && used < room_->columns) {
                ++widths_[column];
                ++used;
                isGrowing = true;
            }
        }
    }
}

std::string const& TableLines::makeLine(std::vector<std::string> const& cells, bool isRow) {
    line_.clear();
    for (std::size_t const i : shown_) {
        std::string_view cell = cells[i];
        std::string cut;
        std::size_t columns = countColumns(cell);
        if (room_ && columns > widths_[i]) {
            cut = shorten(cell, widths_[i], headings_[i].fit.cut, room_->ellipsis);
            cell = cut;
            columns = countColumns(cell);
        }
        std::size_t const blanks = widths_[i] - std::min(columns, widths_[i]);
        bool const isRight = headings_[i].align == Align::right;
        bool const isLast = i == shown_.back();
        bool const isPainted = inColour_ && headings_[i].paint != nullptr && isRow;
        line_.append(isRight ? blanks : 0, ' ');
        if (isPainted) {
            line_ += headings_[i].paint(cell);
        } else {
            line_ += cell;
        }
        line_.append(isRight || isLast ? 0 : blanks, ' ').append(isLast ? "" : kGap);
    }
    line_ += '\n';
    return line_;
}

}  // namespace TalIec61850Tools
