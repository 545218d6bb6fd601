#pragma once

#include <string>

#include "tools/plot/PlotRow.hpp"
#include "tools/plot/TextWidth.hpp"

namespace TalIec61850Tools {

/// A line of text over the whole width; cut where it does not fit.
class TextRow : public PlotRow {
public:
    /// @param look    its anchor counts for nothing
    /// @param height  in pixels
    TextRow(PlotSheet const& sheet, std::string text, TextLook const& look, double height,
            Cut cut = Cut::middle);

    [[nodiscard]] double height() const override { return height_; }
    void draw(SvgWriter& svg, double top) const override;

private:
    PlotSheet const& sheet_;
    std::string text_;
    TextLook look_;
    double height_;
};

}  // namespace TalIec61850Tools
