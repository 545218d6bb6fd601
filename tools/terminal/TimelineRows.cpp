#include "tools/terminal/TimelineRows.hpp"

#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <algorithm>
#include <cstddef>
#include <string_view>

#include "tools/output/TextEscape.hpp"
#include "tools/terminal/MarkedLine.hpp"
#include "tools/terminal/PaintedLine.hpp"
#include "tools/terminal/TextTimeAxis.hpp"
#include "tools/terminal/TimeScale.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::LaneInterval;
using TalIec61850Analysis::LaneState;
using TalIec61850Analysis::MemberLane;

namespace {

/// How a column of a lane is drawn.
enum class Drawn { nothing, unknown, filled, thin, written, manyChanges };

Drawn drawnAs(TalIec61850Analysis::DataValue const& value) {
    auto const bit = bitOf(value);
    if (!bit) {
        return Drawn::written;
    }
    return *bit ? Drawn::filled : Drawn::thin;
}

Drawn drawnAs(LaneInterval const& interval) {
    if (interval.state == LaneState::several) {
        return Drawn::manyChanges;
    }
    return interval.value ? drawnAs(*interval.value) : Drawn::unknown;
}

/// What is in a column of a lane.
struct LaneColumn {
    /// The last one that begins in it or before it; null for none.
    LaneInterval const* interval = nullptr;
    std::size_t changes = 0;

    [[nodiscard]] Drawn drawn() const {
        if (interval == nullptr) {
            return Drawn::nothing;
        }
        return changes > 1 ? Drawn::manyChanges : drawnAs(*interval);
    }
};

std::vector<LaneColumn> columnsOf(MemberLane const& lane, TimeScale const& scale) {
    std::vector<LaneColumn> columns(scale.columns());
    for (LaneInterval const& interval : lane.intervals) {
        auto const span = scale.spanOf(interval.from, interval.to);
        for (std::size_t column = span.first; column < span.end; ++column) {
            LaneColumn& there = columns[column];
            there.changes += there.interval == nullptr ? 0 : 1;
            there.interval = &interval;
        }
    }
    return columns;
}

std::string_view glyphOf(Drawn drawn, bool isUtf8) {
    switch (drawn) {
        case Drawn::unknown:
            return isUtf8 ? "\u00B7" : ".";
        case Drawn::filled:
            return isUtf8 ? "\u2586" : "#";
        case Drawn::thin:
            return isUtf8 ? "\u2581" : "_";
        case Drawn::manyChanges:
            return isUtf8 ? "\u2592" : "*";
        default:
            return " ";
    }
}

/// The lines of a stream.
class StreamLanes {
public:
    StreamLanes(TimelinePicture const& stream, TextForm const& form)
        : stream_(stream),
          form_(form),
          labelColumns_(labelColumns(stream, form)),
          scale_(stream.from, stream.end, form.columns - labelColumns_) {}

    [[nodiscard]] std::string text() const {
        std::string text;
        for (TimelineLane const& lane : stream_.lanes) {
            text += laneLine(lane);
            text += badQualityLine(lane);
        }
        return text + timeAxisLine(scale_, labelColumns_, form_);
    }

private:
    /// With a blank after the names.
    static std::size_t labelColumns(TimelinePicture const& stream, TextForm const& form) {
        constexpr std::size_t kShortestName = 4;
        std::size_t name = kShortestName;
        for (TimelineLane const& lane : stream.lanes) {
            name = std::max(name, countColumns(lane.name));
        }
        return std::min(name, form.columns / 3) + 1;
    }

    [[nodiscard]] std::string laneLine(TimelineLane const& lane) const {
        auto const columns = columnsOf(*lane.lane.lane, scale_);
        PaintedLine line(form_.inColour);
        line.addLeft(lane.name, labelColumns_ - 1, form_.ellipsis());
        line.add(" ");
        for (std::size_t first = 0; first < columns.size();) {
            Drawn const drawn = columns[first].drawn();
            std::size_t end = first + 1;
            if (drawn == Drawn::written) {
                while (end < columns.size() && columns[end].interval == columns[first].interval) {
                    ++end;
                }
                writeValue(line, *columns[first].interval, end - first);
            } else {
                line.add(glyphOf(drawn, form_.isUtf8),
                         drawn == Drawn::unknown ? Paint::faint : Paint::plain);
            }
            first = end;
        }
        return line.take();
    }

    /// A value, after a mark where it begins, and a line to where it ends.
    void writeValue(PaintedLine& line, LaneInterval const& interval, std::size_t columns) const {
        bool const beginsHere = interval.from >= stream_.from;
        if (beginsHere) {
            line.add(form_.isUtf8 ? "\u2502" : "|");
        }
        std::size_t const room = columns - (beginsHere ? 1 : 0);
        std::string const text =
            shorten(laneText(*interval.value), room, Cut::end, form_.ellipsis());
        line.add(text);
        std::size_t const left = room - std::min(room, countColumns(text));
        if (left > 0) {
            line.add(" ");
            line.repeat(left - 1, form_.isUtf8 ? "\u2500" : "-", Paint::faint);
        }
    }

    [[nodiscard]] std::string badQualityLine(TimelineLane const& lane) const {
        MarkedColumns bad(scale_);
        for (LaneTime const& time : badTimes(lane.lane)) {
            bad.mark(time.from, time.to);
        }
        return bad.areAny() ? markedLine(Mark::badQuality, bad, labelColumns_, form_) : "";
    }

    TimelinePicture const& stream_;
    TextForm form_;
    std::size_t labelColumns_;
    TimeScale scale_;
};

}  // namespace

std::string timelineRows(TimelinePicture const& stream, TextForm const& form) {
    return StreamLanes(stream, form).text();
}

}  // namespace TalIec61850Tools
