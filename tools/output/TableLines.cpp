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

/// Lines that one row takes at most.
constexpr std::size_t kMostLines = 8;

/// Breaks a cell into lines of so many columns, between words where it can.
std::vector<std::string> wrapCell(std::string_view cell, TableRoom const& room,
                                  std::size_t columns) {
    std::vector<std::string> lines;
    while (countColumns(cell) > columns && lines.size() + 1 < kMostLines) {
        std::size_t const fitting = shorten(cell, columns, Cut::end, "").size();
        std::size_t const blank = cell.rfind(' ', fitting);
        bool const isBetweenWords = blank != std::string_view::npos && blank != 0;
        std::size_t const size = isBetweenWords ? blank : fitting;
        if (size == 0) {
            break;  // a character is wider than the column
        }
        lines.emplace_back(cell.substr(0, size));
        cell.remove_prefix(isBetweenWords ? size + 1 : size);
    }
    lines.push_back(shorten(cell, columns, Cut::end, room.ellipsis));
    return lines;
}

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
        sink_(makeRow(cells));
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
    line_.clear();
    appendLine(heads, false);
    line_.pop_back();
    sink_(emphasise(line_, inColour_) + "\n");
    for (auto const& cells : std::exchange(held_, {})) {
        sink_(makeRow(cells));
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

bool TableLines::isWrapped(std::vector<std::string> const& cells, std::size_t column) const {
    return room_ && headings_[column].fit.wraps && countColumns(cells[column]) > widths_[column];
}

std::string const& TableLines::makeRow(std::vector<std::string> const& cells) {
    line_.clear();
    std::vector<std::size_t> wrapped;
    std::copy_if(shown_.begin(), shown_.end(), std::back_inserter(wrapped),
                 [&](std::size_t column) { return isWrapped(cells, column); });
    if (wrapped.empty()) {
        appendLine(cells, inColour_);
        return line_;
    }
    std::vector<std::vector<std::string>> texts;
    std::size_t count = 0;
    for (std::size_t const column : wrapped) {
        texts.push_back(wrapCell(cells[column], *room_, widths_[column]));
        count = std::max(count, texts.back().size());
    }
    auto line = cells;
    for (std::size_t number = 0; number < count; ++number) {
        for (std::size_t i = 0; i < wrapped.size(); ++i) {
            line[wrapped[i]] = number < texts[i].size() ? texts[i][number] : std::string();
        }
        appendLine(line, inColour_);
        if (number == 0) {
            line.assign(cells.size(), "");
        } else {
            line_.replace(line_.find_last_not_of(" \n") + 1, std::string::npos, 1, '\n');
        }
    }
    return line_;
}

void TableLines::appendLine(std::vector<std::string> const& cells, bool isPainted) {
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
        line_.append(isRight ? blanks : 0, ' ');
        if (isPainted && headings_[i].paint != nullptr && !cell.empty()) {
            line_ += headings_[i].paint(cell);
        } else {
            line_ += cell;
        }
        line_.append(isRight || isLast ? 0 : blanks, ' ').append(isLast ? "" : kGap);
    }
    line_ += '\n';
}

}  // namespace TalIec61850Tools
