#include "tools/terminal/MarkedLine.hpp"

#include "tools/terminal/PaintedLine.hpp"

namespace TalIec61850Tools {

std::string_view glyphOf(Mark mark, bool isUtf8) {
    if (mark == Mark::missing) {
        return isUtf8 ? "\u2591" : "x";
    }
    return isUtf8 ? "\u2580" : "!";
}

std::string markedLine(Mark mark, MarkedColumns const& columns, std::size_t labelColumns,
                       TextForm const& form) {
    bool const isMissing = mark == Mark::missing;
    Paint const paint = isMissing ? Paint::faint : Paint::warning;
    PaintedLine line(form.inColour);
    constexpr std::string_view kMissing = "missing";
    constexpr std::string_view kBadQuality = "bad quality";
    constexpr std::string_view kBad = "bad";
    std::string_view const bad = kBadQuality.size() < labelColumns ? kBadQuality : kBad;
    std::string_view const label = (isMissing ? kMissing : bad).substr(0, labelColumns - 1);
    line.addLeft(label, labelColumns, "", paint);
    for (std::size_t column = 0; column < columns.size(); ++column) {
        line.add(columns[column] ? glyphOf(mark, form.isUtf8) : " ",
                 columns[column] ? paint : Paint::plain);
    }
    return line.take();
}

}  // namespace TalIec61850Tools
