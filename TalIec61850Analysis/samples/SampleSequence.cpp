#include <TalIec61850Analysis/samples/LineFit.hpp>
#include <TalIec61850Analysis/samples/SampleSequence.hpp>
#include <TalIec61850Analysis/samples/SamplesInFrame.hpp>
#include <algorithm>
#include <cmath>

namespace TalIec61850Analysis::detail {

namespace {

constexpr std::int64_t kSecondNs = 1'000'000'000;
/// How far the clock of a capture may be ahead of that of a publisher.
constexpr std::int64_t kClockAhead = 100'000'000;
/// smpSynch of a publisher that is synchronized to a global clock.
constexpr std::uint8_t kGlobalSynch = 2;

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

}  // namespace

SampleSequence::SampleSequence(TrafficIndex const& index, TrafficStream const& stream,
                               SampleRate given, bool withMissing)
    : index_(index),
      stream_(stream),
      given_(given),
      withMissing_(withMissing),
      inFrame_(samplesInFrame(stream)),
      course_(stream) {}

bool SampleSequence::isCounted(PacketRef packet) const {
    return stream_.parts[packet.part].packets.flags()[packet.packet].firstCounter() ==
           CounterState::held;
}

std::pair<std::uint32_t, std::uint64_t> SampleSequence::frameOf(PacketRef packet) const {
    return {packet.part, stream_.parts[packet.part].packets.frameOffsets()[packet.packet]};
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
        if (rest_.count > 0) {
            giveRest(sample);
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

void SampleSequence::takeRest(std::uint32_t count) {
    lastGiven_ = {.packet = {.part = rest_.first.part, .packet = rest_.first.packet + count - 1},
                  .number = rest_.number + count - 1};
    nextNumber_ = lastGiven_->number + 1;
    rest_.first.packet += count;
    rest_.number += count;
    rest_.count -= count;
    counts_.received += count;
}

void SampleSequence::giveRest(SequencedSample& sample) {
    sample = {.packet = rest_.first, .number = rest_.number};
    takeRest(1);
    setTime(sample);
}

/// Reads packets until one can be given, or the run ends.
bool SampleSequence::fill() {
    while (!isAtEnd_) {
        if (queue_.count == 0 && !fillQueue()) {
            break;
        }
        if (!nextRun_) {
            takeNext();
        }
        if (nextRun_ || isHeadFinal() || rest_.count > 0) {
            return true;
        }
    }
    return held_ > 0;
}

/// Takes packets from the course, and finds their rate where it may be another.
bool SampleSequence::fillQueue() {
    bool const isNewRate = packetsOfRate_ == rate_.packets;
    FoundRate found;
    if (isNewRate) {
        found = findRate(index_, stream_, course_, given_);
    }
    queue_ = course_.nextStrip(isNewRate ? 1 : rate_.packets - packetsOfRate_);
    if (queue_.count == 0) {
        isAtEnd_ = true;
        return false;
    }
    packetsOfRate_ += queue_.count;
    if (!isNewRate) {
        return true;
    }
    bool const isSame = isStarted_ && found.rate == rate_.rate && found.wrap == rate_.wrap &&
                        found.countsSeconds == rate_.countsSeconds;
    rate_ = found;
    packetsOfRate_ = queue_.count;
    if (!isSame) {
        nextRun_ = {.packet = queue_.first,
                    .start = isStarted_ ? RunStart::rateChange : RunStart::first};
        queue_ = {};
        isStarted_ = true;
    }
    return true;
}

/// Takes the first packet of the queue; where no sample is missing that may still come, those that
/// go on after it are counted at once.
void SampleSequence::takeNext() {
    PacketRef const packet = queue_.first;
    ++queue_.first.packet;
    --queue_.count;
    bool const isNext = take(packet) == CountStep::next;
    std::uint32_t const count = std::min(queue_.count, counter_.untilWrap());
    if (!isNext || count == 0 || !counter_.isWhole()) {
        return;
    }
    rest_ = {.first = queue_.first, .count = count, .number = counter_.newest() + 1};
    PacketRef const last{.part = rest_.first.part, .packet = rest_.first.packet + count - 1};
    counter_.addNext(count, arrivalOf(last));
    newest_ = last;
    room_.addNext(count);
    queue_.first.packet += count;
    queue_.count -= count;
}

CountStep SampleSequence::take(PacketRef packet) {
    bool const counted = isCounted(packet);
    if (counted != runIsCounted_) {
        nextRun_ = {.packet = packet, .start = RunStart::uncounted};
        return CountStep::restart;
    }
    if (!counted) {
        holdNewest(packet, ++uncounted_);
        return CountStep::first;
    }
    CountStep const step = count(counter_, room_, newest_, packet);
    if (step == CountStep::next) [[likely]] {
        newest_ = packet;
        holdNewest(packet, counter_.number());
    } else if (step == CountStep::late) {
        ++counts_.late;
        holdLate(packet, counter_.number());
    } else if (step == CountStep::repeated) {
        ++counts_.repeated;
    } else if (beginsRun(step)) {
        nextRun_ = {.packet = packet, .start = startOf(step)};
    }
    return step;
}

/// Adds a packet to a counter. Where the counter went further than arrival, and the packet before
/// was not late, the publisher counts on from elsewhere: nothing is lost. Where more are missing
/// than there is room for, a run begins.
/// @param newest  the packet of the counter's newest sample
CountStep SampleSequence::count(SampleCounter& counter, MissingRoom& room, PacketRef newest,
                                PacketRef packet) const {
    PacketColumns const& packets = stream_.parts[packet.part].packets;
    std::int64_t const before = counter.newest();
    std::int64_t const arrival = packets.times()[packet.packet];
    CountStep const step = counter.add(packets.smpCnts()[packet.packet], arrival);
    if (step != CountStep::next) {
        return step;
    }
    std::int64_t const advance = counter.newest() - before;
    if (advance != 1 && arrival != kNoTime && arrivalOf(newest) != kNoTime) [[unlikely]] {
        double const passed = static_cast<double>(arrival) -
                              static_cast<double>(arrivalOf(newest)) + latenessOf(newest);
        if (runRate_.countRule().isJump(advance, passed, inFrame_)) {
            return CountStep::restart;
        }
    }
    if (room.take(advance - 1)) [[likely]] {
        return step;
    }
    return runRate_.rate.isKnown() ? CountStep::pause : CountStep::restart;
}

/// How much later than its neighbours a packet came, in nanoseconds, by those before it.
double SampleSequence::latenessOf(PacketRef packet) const {
    constexpr std::uint32_t kLookedAt = 64;
    PacketColumns const& packets = stream_.parts[packet.part].packets;
    auto const arrival = static_cast<double>(arrivalOf(packet));
    auto const wrap = std::int64_t{runRate_.wrap};
    double lateness = 0;
    for (std::uint32_t i = 1; i <= std::min(kLookedAt, packet.packet); ++i) {
        PacketRef const other{.part = packet.part, .packet = packet.packet - i};
        std::int64_t const away =
            std::int64_t{packets.smpCnts()[packet.packet]} - packets.smpCnts()[other.packet];
        std::int64_t const samples = (away % wrap + wrap) % wrap;
        if (samples > kLookedAt || arrivalOf(other) == kNoTime) {
            continue;  // of another run, or of no use
        }
        double const even = static_cast<double>(arrivalOf(other)) +
                            static_cast<double>(samples) * runRate_.rate.interval();
        lateness = std::max(lateness, arrival - even);
    }
    return lateness;
}

void SampleSequence::begin(PacketRef packet, RunStart start) {
    run_ = {.start = start,
            .first = packet,
            .before = lastGiven_ ? std::optional(lastGiven_->packet) : std::nullopt,
            .rate = rate_.rate,
            .rateSource = rate_.source,
            .measuredRate = rate_.measured,
            .countedRate = rate_.counted,
            .isRateContradicted = rate_.isContradicted};
    ++counts_.runs;
    runIsCounted_ = isCounted(packet);
    isFirstOfRun_ = true;
    second_.reset();
    fit_.reset();
    runCourse_ = course_;
    runQueue_ = queue_;
    runFirst_ = packet;
    lastGiven_.reset();
    runRate_ = rate_;
    runRoom_ = room_;
    runPackets_ = rate_.packets - packetsOfRate_ + queue_.count;
    uncounted_ = 0;
    counter_ = SampleCounter(runRate_.countRule());
    if (runIsCounted_) {
        PacketColumns const& packets = stream_.parts[packet.part].packets;
        static_cast<void>(
            counter_.add(packets.smpCnts()[packet.packet], packets.times()[packet.packet]));
    }
    newest_ = packet;
    holdNewest(packet, counter_.newest());
}

void SampleSequence::holdNewest(PacketRef packet, std::int64_t number) {
    pending_[(head_ + held_) % kRing] = {.packet = packet, .number = number};
    ++held_;
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
    return isAtEnd_ || nextRun_ || !runIsCounted_ || counter_.isWhole() ||
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
        runRate_.countsSeconds && packets.smpSynchs()[sample.packet.packet] == kGlobalSynch &&
        packets.flags()[sample.packet.packet].secondCounter() == CounterState::held;
    if (isGlobal && !second_) {
        fixSecond(sample);
    }
    if (isGlobal && second_) {
        sample.time = countedTime(sample.number);
        sample.source = SampleTimeSource::smpCnt;
        return;
    }
    if (!fit_) {
        fitRun();
    }
    if (fit_->origin != kNoTime && fit_->interval > 0) {
        sample.time = fittedTime(sample.number);
        sample.source = sample.time == kNoTime ? SampleTimeSource::none : SampleTimeSource::fit;
    }
}

std::int64_t SampleSequence::countedTime(std::int64_t number) const {
    return *second_ + runRate_.rate.timeOf(number - numberInSecond_);
}

std::int64_t SampleSequence::fittedTime(std::int64_t number) const {
    double const away =
        fit_->meanTime +
        fit_->interval * (static_cast<double>(number - fit_->firstNumber) - fit_->meanNumber);
    // Where times of arrival are centuries apart, the line leaves what 64 bits hold.
    constexpr double kMost = 9e18;
    bool const isHeld =
        std::abs(away) < kMost && std::abs(static_cast<double>(fit_->origin) + away) < kMost;
    return isHeld ? fit_->origin + static_cast<std::int64_t>(std::floor(away)) : kNoTime;
}

void SampleSequence::fillTimes(std::int64_t number, SequencedSample const& like,
                               std::span<std::int64_t> times) const {
    if (times.empty()) {
        return;
    }
    if (like.source == SampleTimeSource::fit) {
        for (std::int64_t& time : times) {
            time = fittedTime(number++);
        }
        return;
    }
    if (like.source != SampleTimeSource::smpCnt) {
        std::fill(times.begin(), times.end(), kNoTime);
        return;
    }
    // As countedTime, without a division for each: whole nanoseconds, and parts of one. smpCnt
    // counts seconds, so that the rate is in samples a second.
    std::int64_t const each = runRate_.rate.samples;
    std::int64_t const whole = kSecondNs / each;
    std::int64_t const part = kSecondNs % each;
    std::int64_t time = countedTime(number);
    std::int64_t parts = (number - numberInSecond_) % each * part % each;
    for (std::int64_t& result : times) {
        result = time;
        time += whole;
        parts += part;
        if (parts >= each) {
            parts -= each;
            ++time;
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
    second_ = floorTo(arrival - runRate_.rate.timeOf(inSecond) + kClockAhead, kSecondNs);
    numberInSecond_ = sample.number - inSecond;
}

/// Visits the packets of the run that go on in the counter, after the first one.
template <typename Visit>
void SampleSequence::visitRun(SampleCounter& counter, Visit const& visit) const {
    PacketCourse course = *runCourse_;
    PacketCourse::Strip strip = runQueue_;
    PacketRef newest = runFirst_;
    MissingRoom room = runRoom_;
    for (std::uint64_t left = runPackets_; left > 0; --left) {
        if (strip.count == 0) {
            strip = course.nextStrip(left);
        }
        if (strip.count == 0 || !isCounted(strip.first)) {
            return;
        }
        PacketRef const packet = strip.first;
        ++strip.first.packet;
        --strip.count;
        CountStep const step = count(counter, room, newest, packet);
        if (beginsRun(step)) {
            return;
        }
        if (step == CountStep::next) {
            newest = packet;
            visit(packet);
        }
    }
}

/// Fits a line through the arrivals of a run: of each frame, that of its newest sample.
void SampleSequence::fitRun() {
    SampleCounter counter(runRate_.countRule());
    static_cast<void>(counter.add(stream_.parts[runFirst_.part].packets.smpCnts()[runFirst_.packet],
                                  arrivalOf(runFirst_)));
    Fit fit{.firstNumber = counter.newest()};
    LineFit line;
    PacketRef last = runFirst_;
    std::int64_t lastNumber = counter.newest();
    auto const addLast = [&] {
        std::int64_t const arrival = arrivalOf(last);
        if (arrival != kNoTime) {
            fit.origin = fit.origin == kNoTime ? arrival : fit.origin;
            line.add(lastNumber - fit.firstNumber, arrival - fit.origin);
        }
    };
    visitRun(counter, [&](PacketRef packet) {
        if (frameOf(packet) != frameOf(last)) {
            addLast();
        }
        last = packet;
        lastNumber = counter.newest();
    });
    addLast();
    if (!line.isEmpty()) {
        fit.meanNumber = line.meanX();
        fit.meanTime = line.meanY();
        double const nominal = runRate_.rate.interval();
        double const slope = line.slope().value_or(0);
        bool const isPlausible =
            slope > 0 && (nominal == 0 || std::abs(slope - nominal) <= nominal / 100);
        fit.interval = isPlausible ? slope : nominal;
    }
    fit_ = fit;
}

}  // namespace TalIec61850Analysis::detail
