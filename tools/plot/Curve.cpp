#include "tools/plot/Curve.hpp"

#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace TalIec61850Tools {

using TalIec61850Analysis::EnvelopeLevel;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::Waveform;

namespace {

/// The data of a path, point by point.
class PathData {
public:
    void lineTo(double x, double y) {
        data_ += isDown_ ? 'L' : 'M';
        append(x, y);
        count_ = isDown_ ? count_ + 1 : 1;
        isDown_ = true;
        last_ = {x, y};
    }
    /// Straight up or down from the last point.
    void upOrDownTo(double y) {
        data_ += 'V';
        data_ += svgNumber(y);
        ++count_;
        last_.y = y;
    }
    /// What follows is not joined with what is there. One point alone is a dot.
    void lift() {
        if (isDown_ && count_ == 1) {
            data_ += 'L';
            append(last_.x, last_.y);
        }
        isDown_ = false;
    }
    [[nodiscard]] bool isDown() const { return isDown_; }
    [[nodiscard]] double lastY() const { return last_.y; }
    [[nodiscard]] std::string take() {
        lift();
        return std::move(data_);
    }

private:
    struct Point {
        double x = 0;
        double y = 0;
    };
    void append(double x, double y) {
        data_ += svgNumber(x);
        data_ += ' ';
        data_ += svgNumber(y);
    }

    std::string data_;
    bool isDown_ = false;
    std::size_t count_ = 0;
    Point last_;
};

/// What samples of a channel are in one column of pixels.
struct PixelColumn {
    ValueRange values;
    bool areMissing = false;
};

/// Whether the samples themselves are there.
bool hasRows(PlottedSamples const& samples, std::size_t channel) {
    return samples.waveform.size() > 0 && channel < samples.waveform.channels.size();
}

Curve throughSamples(PlottedSamples const& samples, std::size_t channel, TimeAxis const& time,
                     ValueAxis const& values, double top) {
    constexpr double kFarApart = 8;
    Waveform const& waveform = samples.waveform;
    ChannelScale const& scale = samples.channels[channel].scale;
    bool const areFar =
        static_cast<double>(waveform.size()) * kFarApart <= time.right() - time.left();
    PathData line;
    PathData dots;
    std::size_t run = 0;
    std::int64_t before = kNoTime;
    for (std::size_t row = 0; row < waveform.size(); ++row) {
        bool isNewRun = false;
        for (; run < waveform.runs.size() && waveform.runs[run].firstRow <= row; ++run) {
            isNewRun = true;
        }
        std::int64_t const instant = waveform.times[row];
        if (isNewRun || instant <= before) {
            line.lift();
        }
        double const value = scale(waveform.channels[channel].values[row]);
        if (instant == kNoTime || !time.contains(instant) || !std::isfinite(value)) {
            line.lift();
            continue;
        }
        before = instant;
        double const x = time.at(instant);
        double const y = top + values.at(value);
        line.lineTo(x, y);
        if (areFar) {
            dots.lineTo(x, y);
            dots.lift();
        }
    }
    return {.line = line.take(), .dots = dots.take()};
}

std::vector<PixelColumn> pixelColumns(PlottedSamples const& samples, std::size_t channel,
                                      TimeAxis const& time) {
    std::vector<PixelColumn> pixels(
        static_cast<std::size_t>(std::max(1.0, std::floor(time.right() - time.left()))));
    if (samples.envelopes.levels.empty()) {
        return pixels;
    }
    EnvelopeLevel const& level = samples.envelopes.levels.front();
    ChannelScale const& scale = samples.channels[channel].scale;
    std::int64_t middle = samples.envelopes.start + level.width / 2;
    for (std::size_t i = 0; i < level.size(); ++i, middle += level.width) {
        auto const place = static_cast<std::size_t>(std::max(0.0, time.at(middle) - time.left()));
        PixelColumn& pixel = pixels[std::min(place, pixels.size() - 1)];
        pixel.areMissing = pixel.areMissing || level.missing[i] > 0;
        pixel.values.add(valuesIn(level, i, channel, scale));
    }
    return pixels;
}

Curve throughColumns(PlottedSamples const& samples, std::size_t channel, TimeAxis const& time,
                     ValueAxis const& values, double top) {
    // Columns and samples need not meet: a column or two without any are no gap.
    constexpr std::size_t kNoGap = 2;
    PathData line;
    std::size_t empty = 0;
    auto const pixels = pixelColumns(samples, channel, time);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        ValueRange const& pixel = pixels[i].values;
        if (!pixel.hasValues) {
            ++empty;
            if (pixels[i].areMissing || empty > kNoGap) {
                line.lift();
            }
            continue;
        }
        empty = 0;
        double const low = top + values.at(pixel.least);
        double const high = top + values.at(pixel.largest);
        // From the last point to the nearer end of this column.
        bool const isLowNear = std::abs(line.lastY() - low) <= std::abs(line.lastY() - high);
        bool const fromLow = !line.isDown() || isLowNear;
        line.lineTo(time.left() + static_cast<double>(i) + 0.5, fromLow ? low : high);
        if (pixel.largest > pixel.least) {
            line.upOrDownTo(fromLow ? high : low);
        }
    }
    return {.line = line.take(), .dots = {}};
}

}  // namespace

ValueRange panelValues(PlottedSamples const& samples, std::vector<std::size_t> const& channels) {
    ValueRange range;
    for (std::size_t const channel : channels) {
        range.add(valuesOf(samples.envelopes, channel, samples.channels[channel].scale));
    }
    return range;
}

Curve drawCurve(PlottedSamples const& samples, std::size_t channel, TimeAxis const& time,
                ValueAxis const& values, double top) {
    return hasRows(samples, channel) ? throughSamples(samples, channel, time, values, top)
                                     : throughColumns(samples, channel, time, values, top);
}

}  // namespace TalIec61850Tools
