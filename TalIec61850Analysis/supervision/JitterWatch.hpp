#pragma once

// Internal: which frames of an SV stream come away from its even course.

#include <TalIec61850Analysis/packet/Sink.hpp>
#include <TalIec61850Analysis/samples/Histogram.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace TalIec61850Analysis::detail {

/// A frame that comes early or late.
struct Deviation {
    PacketRef packet;
    std::int64_t arrival = 0;
    /// The frame before; the first one has none.
    std::optional<PacketRef> before;
    /// Arrival less what the course says, in nanoseconds.
    std::int64_t away = 0;
    /// Whether the frame before was on the course.
    bool isFirst = true;
};

/// Takes deviations without a list of them.
using DeviationSink = Sink<Deviation>;

/// Compares arrival with a line through the medians of blocks of frames, so that neither a constant
/// delay nor a constant drift counts.
class JitterWatch {
public:
    /// @param distances  if not null, gets how far each frame is from its course, in nanoseconds;
    ///                   must outlive the watch
    explicit JitterWatch(Histogram* distances = nullptr) : distances_(distances) {}

    /// Another course begins: what is held is judged before.
    /// @param interval  from one sample to the next, in nanoseconds; 0 where it is not known
    /// @param limit     what is beyond it is reported, in nanoseconds
    void begin(double interval, std::int64_t limit, DeviationSink report);

    /// A frame has come, later than those before by its number.
    void add(std::int64_t number, std::int64_t arrival, PacketRef packet, DeviationSink report) {
        if (interval_ <= 0 || arrival == kNoTime) {
            return;
        }
        if (size_ == kBlock) {
            judge(report);
        }
        if (size_ == 0 && !hasOrigin_) {
            originNumber_ = number;
            originArrival_ = arrival;
            hasOrigin_ = true;
        }
        double const due = static_cast<double>(number - originNumber_) * interval_;
        double const away = static_cast<double>(arrival - originArrival_) - due;
        auto const residual = static_cast<std::int64_t>(std::clamp(away, -kMostAway, kMostAway));
        residuals_[size_] = residual;  // NOLINT(cppcoreguidelines-pro-bounds-constant-array-index)
        frames_[size_] = {packet, arrival};
        ++size_;
        least_ = residual < least_ ? residual : least_;
        most_ = residual > most_ ? residual : most_;
        last_ = residual;
    }

    /// How much later than the course the last frame was, in nanoseconds, as far as is known.
    [[nodiscard]] std::int64_t lastAway() const;

    /// Judges what is held.
    void finish(DeviationSink report) { judge(report); }

private:
    /// Differences of two are numbers still.
    static constexpr double kMostAway = 4e18;
    static constexpr std::size_t kBlock = 256;
    static constexpr std::size_t kFewest = 16;

    struct Frame {
        PacketRef packet;
        std::int64_t arrival = 0;
    };

    void judge(DeviationSink report);
    [[nodiscard]] std::int64_t medianOf(std::size_t first, std::size_t end) const;
    [[nodiscard]] double slopeOfBlock() const;

    Histogram* distances_;
    double interval_ = 0;
    std::int64_t limit_ = 0;
    bool hasOrigin_ = false;
    std::int64_t originNumber_ = 0;
    std::int64_t originArrival_ = 0;
    std::array<std::int64_t, kBlock> residuals_{};
    std::array<Frame, kBlock> frames_{};
    std::size_t size_ = 0;
    std::int64_t least_ = std::numeric_limits<std::int64_t>::max();
    std::int64_t most_ = std::numeric_limits<std::int64_t>::min();
    std::int64_t last_ = 0;
    /// Of the block before.
    bool hasMedian_ = false;
    std::int64_t median_ = 0;
    bool isAway_ = false;
    std::optional<PacketRef> frameBefore_;
};

}  // namespace TalIec61850Analysis::detail
