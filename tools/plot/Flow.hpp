#pragma once

#include <string>
#include <vector>

#include "tools/plot/SvgWriter.hpp"

namespace TalIec61850Tools {

/// What is drawn before a text in a legend.
enum class Swatch { none, stroke, box, bar, line, dotted, triangle, diamond, dot };

/// A text of a legend, with its sign.
struct FlowItem {
    std::string text;
    Swatch swatch = Swatch::none;
    Ink ink = Ink::text;
    /// Of a stroke, as SVG has it; empty for none.
    std::string dashes = {};
    bool isBold = false;
};

/// Texts with signs, one after the other, in as many lines as they take.
class Flow {
public:
    static constexpr double kLineHeight = 18;

    /// @param left, right  where lines begin and end, in pixels
    /// @param widest       pixels that a text may take: what is longer is cut
    Flow(std::vector<FlowItem> items, double left, double right, double widest);

    [[nodiscard]] double height() const;
    void draw(SvgWriter& svg, double top) const;

private:
    struct Placed {
        FlowItem item;
        double x = 0;
        double line = 0;
    };

    std::vector<Placed> items_;
    double lines_ = 0;
};

/// Draws a sign of a finding: an error is a triangle, a warning a diamond, a note a dot.
/// @param x, y  of its middle
/// @param kind  its class in the picture
void drawSign(SvgWriter& svg, Swatch swatch, double x, double y, Ink ink, std::string_view kind);

}  // namespace TalIec61850Tools
