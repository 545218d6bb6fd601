#pragma once

// Internal: which sample of its publisher a packet brings, by smpCnt and arrival.

#include <cstdint>

namespace TalIec61850Analysis::detail {

/// What smpCnt says of a packet, seen from the packets before.
enum class CountStep : std::uint8_t {
    first,      ///< there is none before
    next,       ///< it goes on, past samples that are missing or not
    late,       ///< it was missing
    repeated,   ///< it was there before
    restart,    ///< the counter goes on elsewhere
    pause,      ///< so much time has passed that nothing is said of what was between
    clockStep,  ///< the counter goes on, but the capture's clock jumped
};

/// How a publisher counts.
struct CountRule {
    /// smpCnt is below this, and begins again there.
    std::uint32_t wrap = 65536;
    /// Nanoseconds from one sample to the next; 0 where that is not known.
    double interval = 0;
    /// Samples that may come at once, at most: ASDUs in a frame.
    std::uint32_t atOnce = 1;

    /// Whether the counter went further than arrival: then nothing is lost, the publisher counts on
    /// from elsewhere.
    /// @param advance  of the counter, in samples
    /// @param passed   since the newest sample came, and how late that was, in nanoseconds
    /// @param inFrame  samples of the publisher in a frame, which may have others too
    [[nodiscard]] constexpr bool isJump(std::int64_t advance, double passed,
                                        std::uint32_t inFrame) const {
        // From a frame to the one in which the sample is.
        double const counted = static_cast<double>(advance) + inFrame - 1;
        return advance > 1 && interval > 0 && passed < (counted + inFrame) / 2 * interval;
    }
};

/// Numbers samples by smpCnt. Numbers go on through the wraps of the counter: `number % wrap` is
/// smpCnt. The counter says how many samples are missing but for whole wraps, which arrival
/// decides.
class SampleCounter {
public:
    /// How many samples a late one may be behind the newest.
    static constexpr std::int64_t kMostBehind = 16;

    SampleCounter() = default;
    explicit SampleCounter(CountRule rule) : rule_(rule) {}

    /// A sample has come. One of another course (restart, pause, clockStep) is not added: it is the
    /// first of a counter of its own.
    /// @param smpCnt   below the wrap, or it is a restart
    /// @param arrival  in nanoseconds, or kNoTime
    CountStep add(std::uint32_t smpCnt, std::int64_t arrival) {
        // One of them may be kNoTime, and the difference beyond what there is: then it is not soon.
        auto const since = static_cast<std::int64_t>(static_cast<std::uint64_t>(arrival) -
                                                     static_cast<std::uint64_t>(arrival_));
        if (smpCnt == smpCnt_ + 1 && smpCnt < rule_.wrap && isStarted_ && since >= 0 &&
            since < kSoon) [[likely]] {
            return goTo(newest_ + 1, smpCnt, arrival);
        }
        return addUnusual(smpCnt, arrival);
    }

    /// Samples have come that each go on where the one before is.
    /// @param count    not 0; smpCnt stays below the wrap
    /// @param arrival  of the last of them
    void addNext(std::uint32_t count, std::int64_t arrival) {
        newest_ += count;
        number_ = newest_;
        smpCnt_ += count;
        arrival_ = arrival;
        seen_ = count < 64 ? ~(~seen_ << count) : ~std::uint64_t{0};
    }

    /// How many samples can still be added before the counter begins again.
    [[nodiscard]] std::uint32_t untilWrap() const {
        return smpCnt_ < rule_.wrap ? rule_.wrap - 1 - smpCnt_ : 0;
    }

    /// Whether no sample is missing that may still come.
    [[nodiscard]] bool isWhole() const {
        constexpr std::uint64_t kReach = (std::uint64_t{1} << (kMostBehind + 1)) - 1;
        return (seen_ & kReach) == kReach;
    }

    /// The clock that tells arrival is set.
    /// @param step  in nanoseconds
    void stepClock(std::int64_t step);

    /// The number of the sample that was added last.
    [[nodiscard]] std::int64_t number() const { return number_; }
    /// The largest number so far.
    [[nodiscard]] std::int64_t newest() const { return newest_; }

private:
    /// Time in which no wrap can be missing, whatever the rate: in nanoseconds.
    static constexpr std::int64_t kSoon = 50'000'000;

    CountStep goTo(std::int64_t number, std::uint32_t smpCnt, std::int64_t arrival) {
        std::int64_t const ahead = number - newest_;
        seen_ = ahead < 64 ? seen_ << static_cast<unsigned>(ahead) | 1U : 1U;
        newest_ = number;
        number_ = number;
        smpCnt_ = smpCnt;
        arrival_ = arrival;
        return CountStep::next;
    }
    CountStep addUnusual(std::uint32_t smpCnt, std::int64_t arrival);
    CountStep addBehind(std::int64_t behind);
    CountStep begin(std::uint32_t smpCnt, std::int64_t arrival);

    CountRule rule_;
    bool isStarted_ = false;
    std::int64_t number_ = 0;
    /// Of the newest sample.
    std::int64_t newest_ = 0;
    std::int64_t arrival_ = 0;
    std::uint32_t smpCnt_ = 0;
    /// Which of the newest 64 came: bit 0 is the newest.
    std::uint64_t seen_ = 0;
};

}  // namespace TalIec61850Analysis::detail
