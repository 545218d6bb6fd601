#pragma once

// Internal: the samples of a stream in their own order, each with its time.

#include <TalIec61850Analysis/samples/FindRate.hpp>
#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <TalIec61850Analysis/samples/SampleCounter.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/samples/SampleTimeSource.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

namespace TalIec61850Analysis::detail {

/// A sample, or the place of one that is missing.
struct SequencedSample {
    /// The packet; of a missing one, the packet of the sample before.
    PacketRef packet;
    /// Goes on by one from sample to sample of a run; modulo the wrap it is smpCnt.
    std::int64_t number = 0;
    /// By smpCnt or by a fit, in nanoseconds, or kNoTime.
    std::int64_t time = kNoTime;
    SampleTimeSource source = SampleTimeSource::none;
    bool isMissing = false;
    bool isCounted = true;
    /// Whether it is the first of a run.
    bool startsRun = false;
};

/// Bounds what samples that are missing take: of those that came, each makes room for some, and
/// there is room for the longest outages besides. So a counter that leaps about is no more work
/// than one that goes on.
class MissingRoom {
public:
    /// What is missing before a sample that came.
    /// @return whether there is room for it; what there is no room for is not counted
    bool take(std::int64_t missing) {
        left_ += kOfEach;
        bool const fits = missing <= left_;
        left_ -= fits ? missing : 0;
        return fits;
    }
    /// Samples have come that each go on where the one before is.
    void addNext(std::uint32_t count) { left_ += kOfEach * count; }

private:
    static constexpr std::int64_t kOfEach = 64;
    /// As many as are missing in ten minutes, at nearly 14,000 a second.
    static constexpr std::int64_t kOfAll = std::int64_t{1} << 23U;

    std::int64_t left_ = kOfAll;
};

/// Goes through the samples of a stream in the order in which they were taken. Late samples are put
/// in their places, repeated ones are left out; both are counted. Times of refrTm are for others to
/// look up: only indexed columns are read.
///
/// Memory does not grow with the stream.
class SampleSequence {
public:
    /// @param index, stream  must outlive the sequence
    /// @param given          the rate by the caller; not known where the stream is to tell it
    /// @param withMissing    whether missing samples are given too
    SampleSequence(TrafficIndex const& index, TrafficStream const& stream, SampleRate given,
                   bool withMissing);

    /// @return false after the last sample
    [[nodiscard]] bool next(SequencedSample& sample);

    /// Samples that follow the one given last, packet by packet and number by number, with the same
    /// attributes, the same smpSynch, and times from the same source.
    struct Rest {
        PacketRef first;
        std::uint32_t count = 0;
        std::int64_t number = 0;
    };

    /// All of them that are known; count is 0 where there are none.
    [[nodiscard]] Rest rest() const { return held_ == 0 ? rest_ : Rest(); }

    /// Gives some of them at once: `next` goes on after these.
    /// @param count  at most as many as there are
    void takeRest(std::uint32_t count);

    /// The times of samples that follow each other in the run of the sample given last.
    /// @param number  of the first
    /// @param like    a sample of the run, of the same smpSynch and not before those
    void fillTimes(std::int64_t number, SequencedSample const& like,
                   std::span<std::int64_t> times) const;

    /// The run that the sample given last is of.
    [[nodiscard]] SampleRun const& run() const { return run_; }
    /// smpCnt begins again there.
    [[nodiscard]] std::uint32_t wrap() const { return runRate_.wrap; }
    /// What became of the samples up to the one given last.
    [[nodiscard]] SampleCounts const& counts() const { return counts_; }

private:
    /// A packet that has come, and is held until no late one can come before it.
    struct Pending {
        PacketRef packet;
        std::int64_t number = 0;
    };
    /// What was read ahead: the packet that begins the next run.
    struct NextRun {
        PacketRef packet;
        RunStart start = RunStart::first;
    };
    /// Arrival as a line over the number of the sample.
    struct Fit {
        double meanNumber = 0;
        double meanTime = 0;
        double interval = 0;
        std::int64_t origin = kNoTime;
        std::int64_t firstNumber = 0;
    };

    [[nodiscard]] bool fill();
    [[nodiscard]] bool fillQueue();
    void takeNext();
    CountStep take(PacketRef packet);
    [[nodiscard]] CountStep count(SampleCounter& counter, MissingRoom& room, PacketRef newest,
                                  PacketRef packet) const;
    [[nodiscard]] double latenessOf(PacketRef packet) const;
    void begin(PacketRef packet, RunStart start);
    void holdNewest(PacketRef packet, std::int64_t number);
    void holdLate(PacketRef packet, std::int64_t number);
    void giveRest(SequencedSample& sample);
    [[nodiscard]] bool isHeadFinal() const;
    void giveHead(SequencedSample& sample);
    void giveMissing(SequencedSample& sample);
    void setTime(SequencedSample& sample);
    void fixSecond(SequencedSample const& sample);
    template <typename Visit>
    void visitRun(SampleCounter& counter, Visit const& visit) const;
    void fitRun();
    [[nodiscard]] std::int64_t fittedTime(std::int64_t number) const;
    [[nodiscard]] std::int64_t countedTime(std::int64_t number) const;
    [[nodiscard]] bool isCounted(PacketRef packet) const;
    [[nodiscard]] std::int64_t arrivalOf(PacketRef packet) const;
    /// What tells its frame from others.
    [[nodiscard]] std::pair<std::uint32_t, std::uint64_t> frameOf(PacketRef packet) const;

    TrafficIndex const& index_;
    TrafficStream const& stream_;
    SampleRate given_;
    bool withMissing_;
    std::uint32_t inFrame_;

    PacketCourse course_;
    FoundRate rate_;
    std::uint64_t packetsOfRate_ = 0;
    SampleCounter counter_;
    /// The packet of the counter's newest sample.
    PacketRef newest_;
    MissingRoom room_;
    SampleRun run_;
    SampleCounts counts_;
    std::optional<NextRun> nextRun_;
    bool isAtEnd_ = false;
    bool isStarted_ = false;
    /// What the course gave and was not looked at.
    PacketCourse::Strip queue_;
    /// What is counted, and can be given after what is held.
    Rest rest_;

    /// A ring, in the order of the numbers.
    static constexpr std::size_t kRing = 32;
    std::array<Pending, kRing> pending_{};
    std::size_t head_ = 0;
    std::size_t held_ = 0;

    // Of the run.
    FoundRate runRate_;
    MissingRoom runRoom_;
    bool runIsCounted_ = true;
    bool isFirstOfRun_ = true;
    std::optional<Pending> lastGiven_;
    std::int64_t nextNumber_ = 0;
    std::optional<std::int64_t> second_;
    std::int64_t numberInSecond_ = 0;
    std::optional<Fit> fit_;
    /// From after the first packet of the run on: these, then the others.
    PacketCourse::Strip runQueue_;
    std::optional<PacketCourse> runCourse_;
    PacketRef runFirst_;
    /// How many packets after that may be of the run.
    std::uint64_t runPackets_ = 0;
    std::int64_t uncounted_ = 0;
};

}  // namespace TalIec61850Analysis::detail
