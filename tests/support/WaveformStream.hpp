#pragma once

// SV streams of known waveforms, and the rows that must be read from them. What is expected is
// worked out here, apart from the library.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"

namespace TalTest {

/// The types of members of a sample.
enum class WaveMember {
    boolean,
    int8,
    int16,
    int24,
    int32,
    int64,
    int8u,
    int16u,
    int24u,
    int32u,
    float32,
    float64,
    enumerated,
    quality,
    timestamp
};

/// These members so many times, one after the other.
[[nodiscard]] std::vector<WaveMember> repeatedMembers(std::vector<WaveMember> const& members,
                                                      std::size_t times);

/// Whether each frame comes over two ways.
enum class WaveCopies { none, prp, hsr };

/// How a stream begins; much of it can be changed on the way.
struct WaveformSettings {
    /// Samples a second.
    std::uint32_t rate = 4000;
    /// smpCnt begins again there; the rate where it is unset.
    std::optional<std::uint32_t> wrap = {};
    /// Of the wave, in hertz.
    double frequency = 50;
    std::uint32_t asdus = 1;
    std::vector<WaveMember> members = repeatedMembers({WaveMember::int32, WaveMember::quality}, 8);
    /// What is declared; nothing where it is unset.
    std::optional<std::uint16_t> smpRate = {};
    std::optional<std::uint16_t> smpMod = {};
    bool hasRefrTm = false;
    std::optional<std::uint8_t> smpSynch = 2;
    std::string svID = "MU01";
    Ethernet ethernet = Ethernet().to("01:0c:cd:04:00:01");
    WaveCopies copies = WaveCopies::none;
    /// When smpCnt is 0 first, in seconds since 1970.
    std::uint32_t second = 1'700'000'000;
    /// smpCnt of the first sample.
    std::uint32_t firstCount = 0;
    /// From the newest sample of a frame to its arrival, in nanoseconds, and what is added to that
    /// at random, at most.
    std::int64_t delay = 300'000;
    std::int64_t jitter = 0;
    /// How much faster the clock of the capture runs than that of the publisher.
    double driftPpm = 0;
    std::uint32_t seed = 61850;
    /// Files are next-generation ones.
    bool isPcapng = false;
};

/// A row that must come.
struct WaveformRow {
    static constexpr std::int64_t noTime = INT64_MIN;

    /// When the sample was taken by smpCnt, or by refrTm, to the nanosecond; noTime where only a
    /// fit tells it.
    std::int64_t time = noTime;
    /// When it was taken in truth.
    std::int64_t taken = 0;
    /// When it was taken by the clock of the capture, less no delay: what a fit comes close to.
    std::int64_t arrivalTime = 0;
    /// noTime for a missing one.
    std::int64_t arrival = noTime;
    std::uint32_t smpCnt = 0;
    std::optional<std::uint8_t> smpSynch = {};
    bool isMissing = false;
    /// The number of the run, from 0.
    std::size_t run = 0;
    std::size_t file = 0;
    std::uint64_t fileOffset = 0;
    std::size_t asdu = 0;
    /// Of each channel; a floating-point number by the bits of a double.
    std::vector<std::int64_t> values = {};
    /// Of each channel that has one.
    std::vector<std::uint32_t> qualities = {};
    /// seqData.
    Bytes octets = {};
};

/// What must be counted.
struct WaveformCounts {
    std::uint64_t received = 0;
    std::uint64_t lost = 0;
    std::uint64_t late = 0;
    std::uint64_t repeated = 0;
    std::uint64_t runs = 0;
};

/// A publisher, its network and the one who captures, told step by step what happens.
class WaveformStream {
public:
    explicit WaveformStream(WaveformSettings const& settings = {});

    /// So many frames arrive, one after the other.
    WaveformStream& send(std::size_t frames = 1);
    /// So many never arrive. The next ones must arrive, or end the stream.
    WaveformStream& lose(std::size_t frames = 1);
    /// The frame that arrived last comes again, and is no copy.
    WaveformStream& repeatLast();
    /// A frame arrives after so many later ones.
    /// @param lost  frames that are lost directly after it
    WaveformStream& sendLate(std::size_t frames, std::size_t lost = 0);
    /// The publisher counts on from elsewhere, in no time.
    WaveformStream& restartAt(std::uint32_t smpCnt);
    /// The publisher takes samples at another rate, and counts on from there.
    WaveformStream& changeRate(std::uint32_t rate, std::uint32_t smpCnt,
                               std::optional<std::uint16_t> declared = {});
    /// The clock of the capture is set, far enough that it shows, and not ahead by whole seconds.
    WaveformStream& stepClock(std::int64_t nanoseconds);
    /// The next frame comes so many nanoseconds later than it should.
    WaveformStream& delayNext(std::int64_t nanoseconds);
    /// What the next samples say.
    WaveformStream& synchronize(std::optional<std::uint8_t> smpSynch);
    /// What confRev the next samples have.
    WaveformStream& revise(std::uint32_t confRev);
    /// The next frames go to another file.
    WaveformStream& nextFile();
    /// From now on frames are captured in this file and the next one, or no longer.
    WaveformStream& captureTwice(bool isOn);

    /// The files.
    [[nodiscard]] std::vector<Bytes> captures() const;
    /// What was captured, each frame alone, in the order in which it came: time and octets.
    struct Captured {
        std::int64_t time = 0;
        Bytes frame = {};
        std::size_t file = 0;
        bool isTwice = false;
    };
    [[nodiscard]] std::vector<Captured> const& captured() const { return captured_; }

    /// smpCnt of the next sample.
    [[nodiscard]] std::uint32_t nextCount() const {
        return static_cast<std::uint32_t>(number_ % wrap());
    }

    /// What must be read.
    /// @param withMissing  missing samples too
    [[nodiscard]] std::vector<WaveformRow> rows(bool withMissing) const;
    [[nodiscard]] WaveformCounts counts() const;
    /// What the layout is.
    [[nodiscard]] WaveformSettings const& settings() const { return settings_; }

    /// The time of a sample after sample 0, in whole nanoseconds, cut.
    [[nodiscard]] static std::int64_t timeAfter(std::int64_t number, std::uint32_t rate);

private:
    struct Sample {
        /// smpCnt, and the wraps of it in this run.
        std::int64_t number = 0;
        std::uint32_t rate = 0;
        bool isReceived = false;
        /// The number of what was captured.
        std::size_t capture = 0;
        std::uint64_t offsetInFrame = 0;
        WaveformRow row = {};
    };

    void makeSamples(bool isLost);
    [[nodiscard]] std::int64_t trueTime() const;
    void fillValues(WaveformRow& row, std::int64_t time, std::uint64_t number) const;
    [[nodiscard]] Bytes makeFrame(char lan);
    void capture(std::int64_t extra);
    void captureHeldBack();
    void newRun();
    [[nodiscard]] std::int64_t wrap() const { return settings_.wrap.value_or(rate_); }
    [[nodiscard]] std::int64_t drift() const;
    [[nodiscard]] std::int64_t exactTime(Sample const& sample,
                                         std::optional<std::int64_t> fixedSecond) const;

    WaveformSettings settings_;
    std::uint32_t rate_;
    std::uint32_t confRev_ = 1;
    /// Number 0 of this rate, in nanoseconds since 1970, and how many samples there were since.
    std::int64_t origin_;
    std::int64_t sinceOrigin_ = 0;
    /// smpCnt with wraps.
    std::int64_t number_;
    std::uint64_t allSamples_ = 0;
    std::int64_t clock_ = 0;
    std::int64_t lastArrival_ = 0;
    std::int64_t delayOfNext_ = 0;
    std::size_t run_ = 0;
    bool isRunEmpty_ = true;
    std::size_t file_ = 0;
    bool isTwice_ = false;
    std::uint16_t redundancySequence_ = 0;
    /// By the octets of the ASDUs.
    std::map<std::size_t, std::size_t> sequenceOffsets_;
    std::mt19937 random_;

    /// All, in the order in which they were taken.
    std::vector<Sample> samples_;
    std::vector<Captured> captured_;
    /// A frame that is to arrive after so many others: its samples, and its frames.
    struct HeldBack {
        std::size_t left = 0;
        std::size_t firstSample = 0;
        std::vector<Bytes> frames = {};
    };
    std::optional<HeldBack> heldBack_;
    WaveformCounts counts_;
};

}  // namespace TalTest
