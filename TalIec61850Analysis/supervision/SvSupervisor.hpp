#pragma once

// Internal: what goes wrong in the course of one SV stream.

#include <TalIec61850Analysis/samples/SampleCounter.hpp>
#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/supervision/JitterWatch.hpp>
#include <TalIec61850Analysis/supervision/SvObservation.hpp>
#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// How an SV stream should come.
struct SvCourse {
    CountRule count;
    SampleRate rate;
    /// Samples of the stream in one frame.
    std::uint32_t inFrame = 1;
    /// Whether packets come over several ways.
    bool isRedundant = false;
};

/// Watches one SV stream, packet by packet, wherever they come from. Copies over another LAN or
/// lane are to be left out. Findings have their places as packets alone. Memory is bounded.
///
/// Findings come with a delay of some packets: a packet that is missing may be late, and what looks
/// like a jump may be a second publisher.
class SvSupervisor {
public:
    /// @param jitterLimit  beyond it a frame is away from its course, in nanoseconds; not set for
    ///                     half an interval of frames
    /// @param distances    see JitterWatch
    explicit SvSupervisor(std::optional<std::int64_t> jitterLimit = {},
                          Histogram* distances = nullptr)
        : jitterLimit_(jitterLimit), jitter_(distances) {}

    /// The packets from the next one on should come like this.
    void follow(SvCourse const& course, SvObservation const& next, FindingSink sink);

    /// The packets from the next one on have these attributes.
    void describe(StreamAttributes const& attributes, SvObservation const& next, FindingSink sink);

    /// The clock of the capture is set before the next packet.
    /// @param step  in nanoseconds
    void stepClock(std::int64_t step, FindingSink sink);

    /// A packet has come.
    void add(SvObservation const& packet, FindingSink sink) {
        // Without a sign, what is before the last one is far from it.
        auto const since =
            static_cast<std::uint64_t>(packet.arrival) - static_cast<std::uint64_t>(last_.arrival);
        if (isQuiet_ && packet.smpCnt == last_.smpCnt + 1 && packet.isCounted &&
            packet.smpSynch == last_.smpSynch && packet.way == last_.way && since < soon_ &&
            packet.smpCnt < course_.count.wrap) [[likely]] {
            static_cast<void>(counter_.add(packet.smpCnt, packet.arrival));
            goOn(packet, sink);
            return;
        }
        addUnusual(packet, sink);
    }

    /// No packet comes any more.
    /// @param end  of what was captured, in nanoseconds, or kNoTime
    void finish(std::int64_t end, FindingSink sink);

    /// Samples a second over the longest time in which the counter went on, lost ones counted; not
    /// set where no time passed. To be asked after `finish`.
    [[nodiscard]] std::optional<double> measuredRate() const;

    /// How many packets were there already when another way brought them.
    [[nodiscard]] std::uint64_t copies() const { return copies_; }

private:
    static constexpr std::uint64_t kSoon = 50'000'000;

    /// Samples that are missing, and may yet come.
    struct Gap {
        std::int64_t first = 0;
        /// The number of the sample after it.
        std::int64_t end = 0;
        std::uint64_t lost = 0;
        SvObservation before;
        SvObservation after;
        /// The late ones, each once.
        std::vector<std::int64_t> filled;
    };
    /// Since when the counter has gone on.
    struct Run {
        std::int64_t number = 0;
        std::int64_t arrival = kNoTime;
        std::uint16_t asdu = 0;
    };
    /// The second of two publishers.
    struct Second {
        SampleCounter counter;
        SvObservation last;
        Finding finding;
        /// How many packets the other one has sent since.
        std::uint32_t missed = 0;
        /// How many there were since the other one.
        std::uint32_t alone = 0;
    };

    void goOn(SvObservation const& packet, FindingSink sink) {
        // The first of a frame.
        if (packet.asdu <= last_.asdu) {
            jitter_.add(counter_.newest(), packet.arrival, packet.packet,
                        [&](Deviation const& away) { reportAway(away, sink); });
        }
        last_ = packet;
    }
    void addUnusual(SvObservation const& packet, FindingSink sink);
    void settleSuspects(bool areAll, FindingSink sink);
    [[nodiscard]] bool isExpected(SvObservation const& packet) const;
    [[nodiscard]] std::optional<bool> isSecondPublisher() const;
    void beginSecond();
    [[nodiscard]] bool isOfSecond(SvObservation const& packet) const;
    void takeForSecond(SvObservation const& packet, FindingSink sink);
    void endSecond(FindingSink sink);
    void take(SvObservation const& packet, FindingSink sink);
    void takeNext(SvObservation const& packet, std::int64_t newestBefore, FindingSink sink);
    [[nodiscard]] bool isJump(SvObservation const& packet, std::int64_t advance) const;
    bool takeFromOtherWay(SvObservation const& packet);
    void takeCounted(SvObservation const& packet, FindingSink sink);
    void takeUncounted(SvObservation const& packet, FindingSink sink);
    void begin(SvObservation const& packet, FindingSink sink);
    void beginRun();
    void endRun();
    void beginJitter(FindingSink sink);
    /// @return whether it was missing
    bool fill(std::int64_t number);
    void settleGaps(bool areAll, FindingSink sink);
    void checkSynch(SvObservation const& packet, FindingSink sink);
    void checkSilence(SvObservation const& packet, FindingSink sink);
    void reportAway(Deviation const& away, FindingSink sink);
    void endAway(FindingSink sink);
    [[nodiscard]] Finding finding(FindingKind kind, SvObservation const& packet) const;
    void report(FindingKind kind, SvObservation const& packet, FindingValue expected,
                FindingValue found, FindingSink sink) const;
    [[nodiscard]] std::uint32_t after(std::uint32_t smpCnt) const;

    std::optional<std::int64_t> jitterLimit_;
    SvCourse course_;
    bool isStarted_ = false;
    SampleCounter counter_;
    /// What is no silence, and no whole wrap: in nanoseconds.
    std::uint64_t soon_ = kSoon;
    /// A silence, in nanoseconds; 0 where no rate tells.
    std::int64_t silence_ = 0;
    /// The newest.
    SvObservation last_;
    /// When any packet came last.
    std::int64_t heard_ = kNoTime;
    /// The last smpSynch that there was.
    std::optional<std::int16_t> synch_;
    /// Whether nothing is held or watched for but the next packet.
    bool isQuiet_ = false;
    std::uint64_t copies_ = 0;
    std::vector<Gap> gaps_;
    std::vector<SvObservation> suspects_;
    std::optional<Second> second_;
    JitterWatch jitter_;
    std::optional<Finding> away_;
    std::optional<StreamAttributes> attributes_;
    std::optional<Run> run_;
    /// The longest run so far.
    double longestSamples_ = 0;
    double longestTime_ = 0;
};

}  // namespace TalIec61850Analysis::detail
