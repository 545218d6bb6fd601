#pragma once

// Internal: how far smpCnt and time go on from frame to frame.

#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// Samples, and the time that they took.
struct SampleSteps {
    double samples = 0;
    /// In nanoseconds.
    double time = 0;

    void add(SampleSteps const& more) {
        samples += more.samples;
        time += more.time;
    }
    /// Samples a second; 0 where there is no time.
    [[nodiscard]] double rate() const { return time > 0 ? samples / time * 1e9 : 0; }

    /// Whether a rate can be measured by it: no clock jumped, and no whole second was lost.
    /// @param interval  about, in nanoseconds from sample to sample
    [[nodiscard]] bool isMeasure(double interval) const {
        constexpr double kJump = 100e6;
        constexpr double kIntervals = 16;
        return time >= 0 && time - samples * interval <= std::max(kJump, kIntervals * interval);
    }
};

/// The newest packet of a frame.
struct CountedFrame {
    std::int64_t smpCnt = 0;
    std::int64_t time = kNoTime;
};

/// Follows frames. Late and repeated ones are passed over, and where smpCnt begins again or goes on
/// elsewhere, steps are counted from there.
class FrameSteps {
public:
    /// smpCnt may go on by so much without being taken for a jump.
    static constexpr std::int64_t kMostAhead = 64;

    /// @return the step from the frame before, where it is one
    std::optional<SampleSteps> add(CountedFrame const& frame) {
        isJump_ = false;
        if (!last_) {
            last_ = frame;
            return std::nullopt;
        }
        std::int64_t const ahead = frame.smpCnt - last_->smpCnt;
        bool const isStep = ahead > 0 && ahead <= kMostAhead;
        // Several that are behind in a row are no late ones.
        if (!isStep && ahead <= 0 && ahead >= -kMostAhead && ++behind_ < kMostBehind) {
            return std::nullopt;
        }
        bool const isTimed = frame.time != kNoTime && last_->time != kNoTime;
        SampleSteps const step{
            .samples = static_cast<double>(ahead),
            .time = static_cast<double>(frame.time) - static_cast<double>(last_->time)};
        last_ = frame;
        behind_ = 0;
        isJump_ = !isStep;
        return isStep && isTimed ? std::optional(step) : std::nullopt;
    }

    /// Whether smpCnt jumped to the frame that was added last.
    [[nodiscard]] bool isJump() const { return isJump_; }

private:
    static constexpr int kMostBehind = 3;

    std::optional<CountedFrame> last_;
    int behind_ = 0;
    bool isJump_ = false;
};

}  // namespace TalIec61850Analysis::detail
