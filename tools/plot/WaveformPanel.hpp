#pragma once

#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/plot/Flow.hpp"
#include "tools/plot/PixelSpans.hpp"
#include "tools/plot/PlotContent.hpp"
#include "tools/plot/PlotRow.hpp"
#include "tools/plot/ValueAxis.hpp"

namespace TalIec61850Tools {

/// The pixels that labels of its axis of values need.
[[nodiscard]] double valueLabelWidth(ValueAxis const& axis);

/// Waveforms of one unit, with the axis of their values and a legend.
class WaveformPanel : public PlotRow {
public:
    static constexpr double kUsualHeight = 150;
    static constexpr double kLeastHeight = 60;

    /// @param samples   must outlive this
    /// @param channels  their places in `samples.channels`
    /// @param errors    findings that are lines across the panel, in nanoseconds since 1970
    WaveformPanel(PlotSheet const& sheet, PlottedSamples const& samples,
                  std::vector<std::size_t> channels, std::vector<std::int64_t> const& errors);

    [[nodiscard]] double height() const override;
    [[nodiscard]] bool isElastic() const override { return true; }
    void stretch(double height) override;
    void draw(SvgWriter& svg, double top) const override;

private:
    [[nodiscard]] std::vector<FlowItem> legend() const;
    void addSpans(PixelSpans& pixels,
                  std::vector<TalIec61850Analysis::SampleSpan> const& spans) const;
    void drawGround(SvgWriter& svg, double top) const;
    void drawAxis(SvgWriter& svg, double top) const;
    void drawCurves(SvgWriter& svg, double top) const;
    void drawMarks(SvgWriter& svg, double top) const;

    PlotSheet const& sheet_;
    PlottedSamples const& samples_;
    std::vector<std::size_t> channels_;
    /// Pixels at which there are errors.
    PixelSpans errors_;
    ValueRange range_;
    ValueAxis values_;
    Flow legend_;
};

/// The colour and the dashes of the channels of a panel, by their places in it.
struct ChannelLook {
    Ink ink = Ink::a;
    std::string dashes;
};
[[nodiscard]] std::vector<ChannelLook> channelLooks(PlottedSamples const& samples,
                                                    std::vector<std::size_t> const& channels);

}  // namespace TalIec61850Tools
