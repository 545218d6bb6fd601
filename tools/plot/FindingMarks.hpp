#pragma once

#include <string>
#include <vector>

#include "tools/plot/Flow.hpp"
#include "tools/plot/PlotContent.hpp"
#include "tools/plot/PlotRow.hpp"

namespace TalIec61850Tools {

/// The sign of findings of a severity, and its colour.
struct FindingSign {
    Swatch swatch = Swatch::dot;
    Ink ink = Ink::note;
    /// Its class in pictures, and its name.
    std::string_view kind;
};
[[nodiscard]] FindingSign signOf(TalIec61850Analysis::Severity severity);

/// Findings as signs at their times.
class FindingMarks : public PlotRow {
public:
    static constexpr double kHeight = 24;

    /// @param findings  must outlive this
    /// @param none      said where there are none
    FindingMarks(PlotSheet const& sheet, std::vector<PlottedFinding> const& findings,
                 std::string none)
        : sheet_(sheet), findings_(findings), none_(std::move(none)) {}

    [[nodiscard]] double height() const override { return kHeight; }
    void draw(SvgWriter& svg, double top) const override;

private:
    void drawSeverity(SvgWriter& svg, double middle, TalIec61850Analysis::Severity severity) const;

    PlotSheet const& sheet_;
    std::vector<PlottedFinding> const& findings_;
    std::string none_;
};

}  // namespace TalIec61850Tools
