#pragma once

#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <string>

#include "tools/plot/PlotContent.hpp"
#include "tools/plot/PlotRow.hpp"

namespace TalIec61850Tools {

/// The name before a row, right-aligned before the axis; cut where it does not fit.
void drawRowName(SvgWriter& svg, PlotSheet const& sheet, double middle, std::string const& name);

/// The values of one GOOSE member over time: what is true is a filled bar, what is false is a line,
/// other values are boxes with the value in them, and a dotted line is where it is not known.
class LaneRow : public PlotRow {
public:
    static constexpr double kHeight = 22;

    /// @param lane  must outlive this
    LaneRow(PlotSheet const& sheet, PlottedLane const& lane) : sheet_(sheet), lane_(lane) {}

    [[nodiscard]] double height() const override { return kHeight; }
    void draw(SvgWriter& svg, double top) const override;

private:
    void drawInterval(SvgWriter& svg, double top,
                      TalIec61850Analysis::LaneInterval const& interval) const;
    void drawBox(SvgWriter& svg, double top, double left, double right,
                 std::string const& text) const;

    PlotSheet const& sheet_;
    PlottedLane const& lane_;
};

}  // namespace TalIec61850Tools
