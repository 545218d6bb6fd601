#include "tools/terminal/SparklineRows.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "tools/output/TextEscape.hpp"
#include "tools/terminal/ChannelCurve.hpp"
#include "tools/terminal/DotCanvas.hpp"
#include "tools/terminal/MarkedLine.hpp"
#include "tools/terminal/PaintedLine.hpp"
#include "tools/terminal/TextTimeAxis.hpp"
#include "tools/terminal/TimeScale.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleSpan;

namespace {

constexpr std::size_t kLinesOfChannel = 2;
/// A curve on fewer columns is none: values and names make room for it.
constexpr std::size_t kLeastCurve = 10;
constexpr std::size_t kLeastName = 4;

/// The text of a value: six digits.
std::string numberText(double value) { return fmt::format("{:.6g}", value + 0.0); }

/// How the columns in front of curves are shared.
struct LabelRoom {
    std::size_t name = 0;
    /// 0 where there is no room for them.
    std::size_t value = 0;

    /// With blanks after each.
    [[nodiscard]] std::size_t all() const { return name + 1 + (value == 0 ? 0 : value + 1); }
};

LabelRoom labelRoom(std::vector<PictureChannel> const& channels,
                    std::vector<ValueRange> const& ranges, TextForm const& form) {
    std::size_t name = kLeastName;
    std::size_t value = 0;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        name = std::max({name, countColumns(channels[i].name), countColumns(channels[i].unit)});
        if (ranges[i].hasValues) {
            value = std::max(
                {value, numberText(ranges[i].least).size(), numberText(ranges[i].largest).size()});
        }
    }
    LabelRoom room{.name = std::min(name, std::max(kLeastName, form.columns / 4)), .value = value};
    if (room.all() + kLeastCurve > form.columns) {
        room.value = 0;
    }
    return room;
}

/// The curve of one channel.
class CurveLines {
public:
    CurveLines(std::vector<ValueRange> const& curve, ValueRange const& range, std::size_t columns,
               bool isUtf8)
        : range_(range), canvas_(columns, kLinesOfChannel, isUtf8) {
        if (!range.hasValues) {
            return;
        }
        draw(curve);
        if (range.least < 0 && range.largest > 0) {
            isCurve_.resize(columns * kLinesOfChannel);
            for (std::size_t i = 0; i < isCurve_.size(); ++i) {
                isCurve_[i] = !canvas_.isEmpty(i % columns, i / columns);
            }
            canvas_.setSparseRow(rowOf(0));
        }
    }

    /// Adds the cells of a line.
    void addTo(PaintedLine& text, std::size_t line, MarkedColumns const& missing,
               TextForm const& form) const {
        for (std::size_t column = 0; column < missing.size(); ++column) {
            bool const hasCurve = isCurve(column, 0) || isCurve(column, 1);
            if (missing[column] && !hasCurve) {
                text.add(glyphOf(Mark::missing, form.isUtf8), Paint::faint);
            } else {
                bool const isZeroLine = !canvas_.isEmpty(column, line) && !isCurve(column, line);
                text.add(canvas_.glyph(column, line), isZeroLine ? Paint::faint : Paint::plain);
            }
        }
    }

private:
    /// Rows of dots, from the top.
    [[nodiscard]] std::size_t rowOf(double value) const {
        auto const last = static_cast<double>(canvas_.height() - 1);
        // Halves: what is between the ends may be more than a double holds.
        double const length = range_.largest / 2 - range_.least / 2;
        double const part = length > 0 ? (range_.largest / 2 - value / 2) / length : 0.5;
        return static_cast<std::size_t>(std::lround(std::clamp(part, 0.0, 1.0) * last));
    }

    /// Columns side by side are joined: half of what is between them is each one's.
    void draw(std::vector<ValueRange> const& curve) {
        struct Rows {
            std::size_t top = 0;
            std::size_t bottom = 0;
        };
        Rows before;
        bool isAfter = false;
        for (std::size_t x = 0; x < curve.size(); ++x) {
            if (!curve[x].hasValues) {
                isAfter = false;
                continue;
            }
            Rows const own{.top = rowOf(curve[x].largest), .bottom = rowOf(curve[x].least)};
            Rows rows = own;
            if (isAfter && own.top > before.bottom + 1) {
                std::size_t const middle = (before.bottom + own.top) / 2;
                canvas_.setColumn(x - 1, before.bottom, middle);
                rows.top = middle + 1;
            } else if (isAfter && before.top > own.bottom + 1) {
                std::size_t const middle = (before.top + own.bottom) / 2;
                canvas_.setColumn(x - 1, middle + 1, before.top);
                rows.bottom = middle;
            }
            canvas_.setColumn(x, rows.top, rows.bottom);
            before = own;
            isAfter = true;
        }
    }

    [[nodiscard]] bool isCurve(std::size_t column, std::size_t line) const {
        std::size_t const columns = isCurve_.size() / kLinesOfChannel;
        return isCurve_.empty() ? !canvas_.isEmpty(column, line)
                                : isCurve_[line * columns + column];
    }

    ValueRange range_;
    DotCanvas canvas_;
    /// Which cells have dots of the curve, where there is a line at zero too.
    std::vector<bool> isCurve_;
};

/// The rows of all channels of a stream.
class StreamRows {
public:
    StreamRows(SparklinePicture const& stream, TextForm const& form)
        : stream_(stream),
          form_(form),
          ranges_(rangesOf(stream)),
          room_(labelRoom(stream.channels, ranges_, form)),
          scale_(stream.from, stream.end, form.columns - std::min(room_.all(), form.columns - 1)),
          missing_(scale_) {
        mark(missing_, stream.picture.spans.missing);
    }

    [[nodiscard]] std::string text() const {
        std::string text;
        for (std::size_t i = 0; i < stream_.channels.size(); ++i) {
            text += channelText(i);
        }
        if (missing_.areAny()) {
            text += markedLine(Mark::missing, missing_, room_.all(), form_);
        }
        return text + timeAxisLine(scale_, room_.all(), form_);
    }

private:
    static std::vector<ValueRange> rangesOf(SparklinePicture const& stream) {
        std::vector<ValueRange> ranges;
        for (std::size_t i = 0; i < stream.channels.size(); ++i) {
            ranges.push_back(valuesOf(stream.picture.envelopes, i, stream.channels[i].scale));
        }
        return ranges;
    }

    static void mark(MarkedColumns& columns, std::vector<SampleSpan> const& spans) {
        for (SampleSpan const& span : spans) {
            columns.mark(span.from, span.to);
        }
    }

    [[nodiscard]] std::string channelText(std::size_t number) const {
        PictureChannel const& channel = stream_.channels[number];
        ValueRange const& range = ranges_[number];
        TimeScale const dots = scale_.finer(DotCanvas::dotsAcross(form_.isUtf8));
        auto const curve = curveOf(stream_.picture, number, channel.scale, dots);
        CurveLines const lines(curve, range, scale_.columns(), form_.isUtf8);
        std::string text;
        for (std::size_t line = 0; line < kLinesOfChannel; ++line) {
            PaintedLine painted(form_.inColour);
            painted.addLeft(line == 0 ? channel.name : channel.unit, room_.name, form_.ellipsis());
            painted.add(" ");
            if (room_.value > 0) {
                double const value = line == 0 ? range.largest : range.least;
                painted.addRight(range.hasValues ? numberText(value) : "-", room_.value,
                                 form_.ellipsis(), Paint::faint);
                painted.add(" ");
            }
            lines.addTo(painted, line, missing_, form_);
            text += painted.take();
        }
        return text + badQualityLine(number);
    }

    [[nodiscard]] std::string badQualityLine(std::size_t number) const {
        auto const& spans = stream_.picture.spans.qualities;
        MarkedColumns bad(scale_);
        if (number < spans.size()) {
            mark(bad, spans[number]);
        }
        return bad.areAny() ? markedLine(Mark::badQuality, bad, room_.all(), form_) : "";
    }

    SparklinePicture const& stream_;
    TextForm form_;
    std::vector<ValueRange> ranges_;
    LabelRoom room_;
    TimeScale scale_;
    MarkedColumns missing_;
};

}  // namespace

std::string sparklineRows(SparklinePicture const& stream, TextForm const& form) {
    return StreamRows(stream, form).text();
}

}  // namespace TalIec61850Tools
