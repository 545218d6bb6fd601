#include "tools/terminal/ChannelCurve.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace TalIec61850Tools {

using TalIec61850Analysis::EnvelopeLevel;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleState;
using TalIec61850Analysis::StreamPicture;
using TalIec61850Analysis::Waveform;

namespace {

bool hasSamples(StreamPicture const& picture) {
    return !picture.waveform.isTooLong && picture.waveform.size() > 0;
}

/// Lines from sample to sample, in columns.
class LineDrawing {
public:
    explicit LineDrawing(TimeScale const& dots) : dots_(dots), curve_(dots.columns()) {}

    /// The next sample does not follow the one before.
    void interrupt() { isAfter_ = false; }

    void goTo(std::int64_t time, double value) {
        double const position = dots_.positionOf(time);
        if (isAfter_ && before_.position < position) {
            drawFrom(before_, position, value);
        }
        include(position, value);
        before_ = {.position = position, .value = value};
        isAfter_ = true;
    }

    [[nodiscard]] std::vector<ValueRange> take() { return std::move(curve_); }

private:
    struct Point {
        double position = 0;
        double value = 0;
    };

    void include(double position, double value) {
        if (position >= 0 && position < static_cast<double>(curve_.size())) {
            curve_[static_cast<std::size_t>(position)].add(value);
        }
    }

    /// What a line has at the edges of columns belongs to both.
    void drawFrom(Point const& from, double position, double value) {
        auto const most = static_cast<double>(curve_.size());
        auto const last = static_cast<std::int64_t>(std::clamp(std::floor(position), -1.0, most));
        double const first = std::clamp(std::floor(from.position) + 1, 0.0, most + 1);
        for (auto each = static_cast<std::int64_t>(first); each <= last; ++each) {
            auto const edge = static_cast<double>(each);
            double const part = (edge - from.position) / (position - from.position);
            double const there = from.value * (1 - part) + value * part;
            include(edge - 1, there);
            include(edge, there);
        }
    }

    TimeScale const& dots_;
    std::vector<ValueRange> curve_;
    Point before_;
    /// Whether there is one.
    bool isAfter_ = false;
};

std::vector<ValueRange> linesOf(Waveform const& waveform, std::size_t channel,
                                ChannelScale const& scale, TimeScale const& dots) {
    LineDrawing drawing(dots);
    auto const& values = waveform.channels[channel].values;
    auto run = waveform.runs.begin();
    for (std::size_t row = 0; row < waveform.size(); ++row) {
        if (run != waveform.runs.end() && run->firstRow == row) {
            drawing.interrupt();
            ++run;
        }
        double const value = scale(values[row]);
        bool const isThere = waveform.states[row] != SampleState::missing &&
                             waveform.times[row] != kNoTime && std::isfinite(value);
        if (isThere) {
            drawing.goTo(waveform.times[row], value);
        } else {
            drawing.interrupt();
        }
    }
    return drawing.take();
}

}  // namespace

std::vector<ValueRange> curveOf(StreamPicture const& picture, std::size_t channel,
                                ChannelScale const& scale, TimeScale const& dots) {
    if (hasSamples(picture)) {
        return linesOf(picture.waveform, channel, scale, dots);
    }
    std::vector<ValueRange> curve(dots.columns());
    if (picture.envelopes.levels.empty()) {
        return curve;
    }
    EnvelopeLevel const& level = picture.envelopes.levels.front();
    for (std::size_t i = 0; i < level.size(); ++i) {
        std::int64_t const middle =
            picture.envelopes.start + static_cast<std::int64_t>(i) * level.width + level.width / 2;
        curve[dots.columnOf(middle)].add(valuesIn(level, i, channel, scale));
    }
    return curve;
}

}  // namespace TalIec61850Tools
