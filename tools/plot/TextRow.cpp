#include "tools/plot/TextRow.hpp"

namespace TalIec61850Tools {

TextRow::TextRow(PlotSheet const& sheet, std::string text, TextLook const& look, double height,
                 Cut cut)
    : sheet_(sheet),
      text_(fitText(text, look.size, sheet.right() - sheet.margin, cut)),
      look_(look),
      height_(height) {}

void TextRow::draw(SvgWriter& svg, double top) const {
    // Below the base line there is a quarter of the size.
    double const base = top + height_ - look_.size / 4 - 1;
    svg.addText(sheet_.margin, base, text_, look_);
}

}  // namespace TalIec61850Tools
