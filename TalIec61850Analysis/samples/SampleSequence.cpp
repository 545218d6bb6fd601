#include <TalIec61850Analysis/samples/SampleSequence.hpp>
#include <cmath>

namespace TalIec61850Analysis::detail {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
/// How far the clock of a capture may be ahead of that of a publisher.
constexpr std::int64_t kClockAhead = 100'000'000;
/// smpSynch of a publisher that is synchronized to a global clock.
constexpr std::uint8_t kGlobal = 2;

std::int64_t floorTo(std::int64_t value, std::int64_t unit) {
    std::int64_t const rest = value % unit;
    return value - (rest < 0 ? rest + unit : rest);
}

RunStart startOf(CountStep step) {
    switch (step) {
        case CountStep::pause:
            return RunStart::pause;
        case CountStep::clockStep:
            return RunStart::clockStep;
        default:
            return RunStart::restart;
    }
}

bool beginsRun(CountStep step) {
    return step == CountStep::restart || step == CountStep::pause || step == CountStep::clockStep;
}

/// Least squares of arrival over numbers.
class LineFit {
public:
    void add(std::int64_t number, std::int64_t time) {
        auto const x = static_cast<long double>(number);
        auto const y = static_cast<long double>(time);
        count_ += 1;
        sumX_ += x;
        sumY_ += y;
        sumXx_ += x * x;
        sumXy_ += x * y;
    }
    [[nodiscard]] bool isEmpty() const { return count_ == 0; }
    [[nodiscard]] double meanX() const { return static_cast<double>(sumX_ / count_); }
    [[nodiscard]] double meanY() const { return static_cast<double>(sumY_ / count_); }
    /// 0 where all numbers are one.
    [[nodiscard]] double slope() const {
        long double const spread = sumXx_ - sumX_ * sumX_ / count_;
        return spread > 0 ? static_cast<double>((sumXy_ - sumX_ * sumY_ / count_) / spread) : 0;
    }

private:
    long double count_ = 0;
    long double sumX_ = 0;
    long double sumY_ = 0;
    long double sumXx_ = 0;
    long double sumXy_ = 0;
};

}  // namespace

SampleSequence::SampleSequence(TrafficIndex const& index, TrafficStream const& stream,
                               SampleRate given, bool withMissing)
    : index_(index), stream_(stream), given_(given), withMissing_(withMissing), course_(stream) {}

bool SampleSequence::isCounted(PacketRef packet) const {
    return stream_.parts[packet.part].packets.flags()[packet.packet].firstCounter() ==
           CounterState::held;
}

std::int64_t SampleSequence::arrivalOf(PacketRef packet) const {
    return stream_.parts[packet.part].packets.times()[packet.packet];
}

bool SampleSequence::next(SequencedSample& sample) {
    while (true) {
        if (held_ > 0 && isHeadFinal()) {
            if (withMissing_ && lastGiven_ && nextNumber_ < pending_[head_].number) {
                giveMissing(sample);
            } else {
                giveHead(sample);
            }
            return true;
        }
        if (held_ == 0 && nextRun_) {
            NextRun const next = *nextRun_;
            nextRun_.reset();
            begin(next.packet, next.start);
            continue;
        }
        if (!fill()) {
            return false;
        }
    }
}

/// Reads packets until one can be given, or the run ends.
bool SampleSequence::fill() {
    while (!isAtEnd_) {
        if (packetsOfRate_ == rate_.packets) {
            PacketCourse const ahead = course_;
            auto const ref = course_.next();
            if (!ref) {
                isAtEnd_ = true;
                break;
            }
            bool const isFirst = !lastPacket_;
            FoundRate const found = findRate(index_, stream_, ahead, given_);
            bool const isSame = !isFirst && found.rate == rate_.rate && found.wrap == rate_.wrap &&
                                found.countsSeconds == rate_.countsSeconds;
            rate_ = found;
            packetsOfRate_ = 1;
            if (isSame) {
                take(*ref);
            } else {
                nextRun_ = {.packet = *ref,
                            .start = isFirst ? RunStart::first : RunStart::rateChange};
                return true;
            }
        } else {
            auto const ref = course_.next();
            if (!ref) {
                isAtEnd_ = true;
                break;
            }
            ++packetsOfRate_;
            take(*ref);
        }
        if (nextRun_ || isHeadFinal()) {
            return true;
        }
    }
    return held_ > 0;
}

void SampleSequence::take(PacketRef packet) {
    bool const counted = isCounted(packet);
    if (counted != runIsCounted_) {
        nextRun_ = {.packet = packet, .start = RunStart::uncounted};
        return;
    }
    if (!counted) {
        holdNewest(packet, ++uncounted_);
        return;
    }
    PacketColumns const& packets = stream_.parts[packet.part].packets;
    CountStep const step =
        counter_.add(packets.smpCnts()[packet.packet], packets.times()[packet.packet]);
    if (step == CountStep::next) [[likely]] {
        holdNewest(packet, counter_.number());
    } else if (step == CountStep::late) {
        ++counts_.late;
        holdLate(packet, counter_.number());
    } else if (step == CountStep::repeated) {
        ++counts_.repeated;
    } else if (beginsRun(step)) {
        nextRun_ = {.packet = packet, .start = startOf(step)};
    }
}

void SampleSequence::begin(PacketRef packet, RunStart start) {
    run_ = {.start = start,
            .first = packet,
            .before = lastGiven_ ? std::optional(lastGiven_->packet) : std::nullopt,
            .rate = rate_.rate,
            .rateSource = rate_.source,
            .measuredRate = rate_.measured,
            .isRateContradicted = rate_.isContradicted};
    ++counts_.runs;
    runIsCounted_ = isCounted(packet);
    isFirstOfRun_ = true;
    second_.reset();
    fit_.reset();
    runCourse_ = course_;
    runFirst_ = packet;
    lastGiven_.reset();
    runRate_ = rate_;
    runPackets_ = rate_.packets - packetsOfRate_;
    uncounted_ = 0;
    counter_ = SampleCounter(countRule());
    if (runIsCounted_) {
        PacketColumns const& packets = stream_.parts[packet.part].packets;
        static_cast<void>(
            counter_.add(packets.smpCnts()[packet.packet], packets.times()[packet.packet]));
    }
    holdNewest(packet, counter_.newest());
}

CountRule SampleSequence::countRule() const {
    return {.wrap = runRate_.wrap,
            .interval = runRate_.rate.isKnown() ? 1e9 / runRate_.rate.perSecond() : 0,
            .atOnce = runRate_.asdus};
}

void SampleSequence::holdNewest(PacketRef packet, std::int64_t number) {
    pending_[(head_ + held_) % kRing] = {.packet = packet, .number = number};
    ++held_;
    lastPacket_ = packet;
}

void SampleSequence::holdLate(PacketRef packet, std::int64_t number) {
    std::size_t place = held_;
    while (place > 0 && pending_[(head_ + place - 1) % kRing].number > number) {
        pending_[(head_ + place) % kRing] = pending_[(head_ + place - 1) % kRing];
        --place;
    }
    pending_[(head_ + place) % kRing] = {.packet = packet, .number = number};
    ++held_;
}

bool SampleSequence::isHeadFinal() const {
    if (held_ == 0) {
        return false;
    }
    return isAtEnd_ || nextRun_ || !runIsCounted_ ||
           counter_.newest() - pending_[head_].number > SampleCounter::kMostBehind;
}

void SampleSequence::giveHead(SequencedSample& sample) {
    Pending const& head = pending_[head_];
    if (lastGiven_) {
        counts_.lost += static_cast<std::uint64_t>(head.number - lastGiven_->number - 1);
    }
    ++counts_.received;
    sample = {.packet = head.packet,
              .number = head.number,
              .isCounted = runIsCounted_,
              .startsRun = isFirstOfRun_};
    isFirstOfRun_ = false;
    lastGiven_ = head;
    nextNumber_ = head.number + 1;
    head_ = (head_ + 1) % kRing;
    --held_;
    setTime(sample);
}

void SampleSequence::giveMissing(SequencedSample& sample) {
    sample = {.packet = lastGiven_->packet, .number = nextNumber_, .isMissing = true};
    ++nextNumber_;
    setTime(sample);
}

void SampleSequence::setTime(SequencedSample& sample) {
    if (!runIsCounted_) {
        return;
    }
    PacketColumns const& packets = stream_.parts[sample.packet.part].packets;
    bool const isGlobal =
        runRate_.countsSeconds && packets.smpSynchs()[sample.packet.packet] == kGlobal &&
        packets.flags()[sample.packet.packet].secondCounter() == CounterState::held;
    if (isGlobal && !second_) {
        fixSecond(sample);
    }
    if (isGlobal && second_) {
        sample.time = *second_ + runRate_.rate.timeOf(sample.number - numberInSecond_);
        sample.source = SampleTimeSource::smpCnt;
        return;
    }
    if (!fit_) {
        fitRun();
    }
    if (fit_->origin != kNoTime && fit_->interval > 0) {
        double const away =
            fit_->meanTime +
            fit_->interval *
                (static_cast<double>(sample.number - fit_->firstNumber) - fit_->meanNumber);
        // Where times of arrival are centuries apart, the line leaves what 64 bits hold.
        constexpr double kMost = 9e18;
        if (std::abs(away) < kMost && std::abs(static_cast<double>(fit_->origin) + away) < kMost) {
            sample.time = fit_->origin + static_cast<std::int64_t>(std::floor(away));
            sample.source = SampleTimeSource::fit;
        }
    }
}

/// The second that the publisher counts in, by the arrival of its first synchronized sample.
void SampleSequence::fixSecond(SequencedSample const& sample) {
    std::int64_t const arrival = arrivalOf(sample.packet);
    if (arrival == kNoTime) {
        return;
    }
    std::int64_t const inSecond = sample.number % runRate_.wrap;
    second_ = floorTo(arrival - runRate_.rate.timeOf(inSecond) + kClockAhead, kSecond);
    numberInSecond_ = sample.number - inSecond;
}

/// Fits a line through the arrivals of a run: of each frame, that of its newest sample.
void SampleSequence::fitRun() {
    PacketColumns const& firstPackets = stream_.parts[runFirst_.part].packets;
    SampleCounter counter(countRule());
    static_cast<void>(counter.add(firstPackets.smpCnts()[runFirst_.packet], arrivalOf(runFirst_)));
    Fit fit{.firstNumber = counter.newest()};
    LineFit line;
    PacketCourse course = *runCourse_;
    PacketRef last = runFirst_;
    std::int64_t lastNumber = counter.newest();
    auto const addLast = [&] {
        std::int64_t const arrival = arrivalOf(last);
        if (arrival != kNoTime) {
            fit.origin = fit.origin == kNoTime ? arrival : fit.origin;
            line.add(lastNumber - fit.firstNumber, arrival - fit.origin);
        }
    };
    for (std::uint64_t left = runPackets_; left > 0; --left) {
        auto const ref = course.next();
        if (!ref) {
            break;
        }
        PacketColumns const& packets = stream_.parts[ref->part].packets;
        if (!isCounted(*ref)) {
            break;
        }
        CountStep const step =
            counter.add(packets.smpCnts()[ref->packet], packets.times()[ref->packet]);
        if (beginsRun(step)) {
            break;
        }
        if (step != CountStep::next) {
            continue;
        }
        bool const isSameFrame = ref->part == last.part && packets.frameOffsets()[ref->packet] ==
                                                               packets.frameOffsets()[last.packet];
        if (!isSameFrame) {
            addLast();
        }
        last = *ref;
        lastNumber = counter.newest();
    }
    addLast();
    if (!line.isEmpty()) {
        fit.meanNumber = line.meanX();
        fit.meanTime = line.meanY();
        double const nominal = runRate_.rate.isKnown() ? 1e9 / runRate_.rate.perSecond() : 0;
        double const slope = line.slope();
        bool const isPlausible =
            slope > 0 && (nominal == 0 || std::abs(slope - nominal) <= nominal / 100);
        fit.interval = isPlausible ? slope : nominal;
    }
    fit_ = fit;
}

}  // namespace TalIec61850Analysis::detail
