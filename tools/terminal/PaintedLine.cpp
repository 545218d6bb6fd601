#include "tools/terminal/PaintedLine.hpp"

#include <algorithm>
#include <utility>

#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

void PaintedLine::add(std::string_view text, Paint paint) {
    if (paint != paint_) {
        paintPending();
        paint_ = paint;
    }
    pending_ += text;
}

void PaintedLine::repeat(std::size_t times, std::string_view text, Paint paint) {
    for (std::size_t i = 0; i < times; ++i) {
        add(text, paint);
    }
}

void PaintedLine::addLeft(std::string_view text, std::size_t columns, std::string_view ellipsis,
                          Paint paint) {
    std::string const fitting = shorten(text, columns, Cut::middle, ellipsis);
    add(fitting, paint);
    repeat(columns - std::min(columns, countColumns(fitting)), " ");
}

void PaintedLine::addRight(std::string_view text, std::size_t columns, std::string_view ellipsis,
                           Paint paint) {
    std::string const fitting = shorten(text, columns, Cut::middle, ellipsis);
    repeat(columns - std::min(columns, countColumns(fitting)), " ");
    add(fitting, paint);
}

std::string PaintedLine::take() {
    pending_.erase(pending_.find_last_not_of(' ') + 1);
    paintPending();
    line_.erase(line_.find_last_not_of(' ') + 1);
    line_ += '\n';
    return std::exchange(line_, {});
}

void PaintedLine::paintPending() {
    if (!pending_.empty()) {
        line_ += inColour_ ? painted(pending_, paint_) : pending_;
        pending_.clear();
    }
}

}  // namespace TalIec61850Tools
