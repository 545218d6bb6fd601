#include <TalIec61850Analysis/supervision/FindingValues.hpp>
#include <TalIec61850Analysis/supervision/SvSupervisor.hpp>
#include <TalIec61850Analysis/supervision/SynchLevel.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

/// A silence is so many intervals, and so many nanoseconds at least.
constexpr double kSilentFrames = 10;
constexpr std::int64_t kSilentTime = 10'000'000;
/// As long as copies of a frame take at most.
constexpr std::int64_t kCopyTime = 400'000'000;
/// Packets that are looked at before a jump is taken for one.
constexpr std::size_t kMostSuspects = 48;
constexpr std::size_t kMostSampleGaps = 64;
/// One of two publishers is gone after so many packets of the other one.
constexpr std::uint32_t kGonePackets = 64;

/// Whole ones, of a time that may be anything.
std::int64_t wholeNanoseconds(double time) {
    constexpr double kMost = 1e17;
    return static_cast<std::int64_t>(std::min(time, kMost));
}

FindingValue rateOf(SampleRate rate) {
    if (rate.seconds == 1) {
        return std::int64_t{rate.samples};
    }
    return rate.perSecond();
}

}  // namespace

std::uint32_t SvSupervisor::after(std::uint32_t smpCnt) const {
    return smpCnt + 1 < course_.count.wrap ? smpCnt + 1 : 0;
}

Finding SvSupervisor::finding(FindingKind kind, SvObservation const& packet) const {
    Finding finding;
    finding.kind = kind;
    finding.protocol = StreamProtocol::sv;
    finding.from = packet.arrival;
    finding.until = packet.arrival;
    finding.place = {.packet = packet.packet, .time = packet.arrival};
    if (heard_ != kNoTime || isStarted_) {
        finding.before = {.packet = last_.packet, .time = last_.arrival};
    }
    return finding;
}

void SvSupervisor::report(FindingKind kind, SvObservation const& packet, FindingValue expected,
                          FindingValue found, FindingSink sink) const {
    Finding made = finding(kind, packet);
    made.expected = std::move(expected);
    made.found = std::move(found);
    sink(made);
}

void SvSupervisor::follow(SvCourse const& course, SvObservation const& next, FindingSink sink) {
    if (!course.rate.isKnown() && course_.rate.isKnown()) {
        return;  // too few packets to tell
    }
    bool const isSameCount = course.count.wrap == course_.count.wrap && course.rate == course_.rate;
    if (isSameCount && isStarted_) {
        return;
    }
    settleSuspects(true, sink);
    constexpr double kRateTolerance = 0.01;
    bool const isOther =
        course_.rate.isKnown() && std::abs(course.rate.perSecond() - course_.rate.perSecond()) >
                                      kRateTolerance * course_.rate.perSecond();
    if (isOther) {
        report(FindingKind::rateChanged, next, rateOf(course_.rate), rateOf(course.rate), sink);
    }
    endSecond(sink);
    settleGaps(true, sink);
    beginJitter(sink);
    course_ = course;
    double const frame = course.count.interval * course.inFrame;
    silence_ = frame > 0 ? std::max(kSilentTime, wholeNanoseconds(kSilentFrames * frame)) : 0;
    soon_ = silence_ > 0 ? std::min(kSoon, static_cast<std::uint64_t>(silence_)) : kSoon;
    isStarted_ = false;
    isQuiet_ = false;
}

void SvSupervisor::describe(StreamAttributes const& attributes, SvObservation const& next,
                            FindingSink sink) {
    if (attributes_ == attributes) {
        return;
    }
    settleSuspects(true, sink);
    if (!attributes_) {
        if (attributes.simulatedBit) {
            report(FindingKind::simulationBegan, next, {}, {}, sink);
        }
        attributes_ = attributes;
        return;
    }
    StreamAttributes& before = *attributes_;
    // Of a frame that was cut, what is not set may have been cut off.
    auto const isOther = [&](auto const& was, auto const& is) {
        return was != is && (is || !attributes.isCut) && (was || !before.isCut);
    };
    if (isOther(before.confRev, attributes.confRev)) {
        report(FindingKind::confRevChanged, next, valueOf(before.confRev),
               valueOf(attributes.confRev), sink);
    }
    if (isOther(before.datSet, attributes.datSet)) {
        report(FindingKind::dataSetChanged, next, valueOf(before.datSet),
               valueOf(attributes.datSet), sink);
    }
    if (before.simulatedBit != attributes.simulatedBit) {
        report(
            attributes.simulatedBit ? FindingKind::simulationBegan : FindingKind::simulationEnded,
            next, {}, {}, sink);
    }
    if (!attributes.isCut) {
        before = attributes;
    }
    before.simulatedBit = attributes.simulatedBit;
}

void SvSupervisor::stepClock(std::int64_t step, FindingSink sink) {
    settleSuspects(true, sink);
    if (!isStarted_) {
        return;
    }
    counter_.stepClock(step);
    if (second_) {
        second_->counter.stepClock(step);
    }
    if (last_.arrival != kNoTime) {
        last_.arrival = shiftedTime(last_.arrival, step);
    }
    if (run_) {
        run_->arrival = shiftedTime(run_->arrival, step);
    }
    if (heard_ != kNoTime) {
        heard_ = shiftedTime(heard_, step);
    }
    beginJitter(sink);
}

void SvSupervisor::addUnusual(SvObservation const& packet, FindingSink sink) {
    suspects_.push_back(packet);
    settleSuspects(false, sink);
}

void SvSupervisor::settleSuspects(bool areAll, FindingSink sink) {
    std::size_t taken = 0;
    while (taken < suspects_.size()) {
        SvObservation const front = suspects_[taken];
        if (second_ && isOfSecond(front)) {
            takeForSecond(front, sink);
            ++taken;
            continue;
        }
        if (!areAll && !isExpected(front)) {
            suspects_.erase(suspects_.begin(),
                            suspects_.begin() + static_cast<std::ptrdiff_t>(taken));
            taken = 0;
            auto const isSecond = isSecondPublisher();
            if (!isSecond) {
                break;
            }
            if (*isSecond) {
                beginSecond();
                continue;
            }
        }
        take(front, sink);
        ++taken;
    }
    suspects_.erase(suspects_.begin(), suspects_.begin() + static_cast<std::ptrdiff_t>(taken));
    isQuiet_ = isStarted_ && gaps_.empty() && suspects_.empty() && !second_;
}

/// Whether no other publisher can have sent the packet.
bool SvSupervisor::isExpected(SvObservation const& packet) const {
    return !isStarted_ || second_ || !packet.isCounted || packet.smpCnt == last_.smpCnt ||
           packet.smpCnt == after(last_.smpCnt) || packet.way != last_.way;
}

/// Whether two counters go on in turns; not set where more packets have to tell.
std::optional<bool> SvSupervisor::isSecondPublisher() const {
    constexpr unsigned kMostInTurn = 3;
    constexpr unsigned kFew = 3;
    constexpr unsigned kMany = 6;
    std::uint32_t const wrap = course_.count.wrap;
    std::uint32_t const start = suspects_.front().smpCnt;
    if (start >= wrap || last_.smpCnt >= wrap) {
        return false;
    }
    // What is so near may be late packets, until the first goes past the start of the second.
    bool const isNear = (start + wrap - last_.smpCnt) % wrap <= SampleCounter::kMostBehind + 1;
    std::uint32_t first = last_.smpCnt;
    std::uint32_t second = start;
    unsigned firsts = 0;
    unsigned seconds = 1;
    unsigned turns = 0;
    unsigned inTurn = 1;
    bool isOnSecond = true;
    bool isPast = false;
    for (std::size_t i = 1; i < suspects_.size(); ++i) {
        SvObservation const& packet = suspects_[i];
        bool const isFirst = packet.isCounted && packet.smpCnt == after(first);
        bool const isSecond = packet.isCounted && packet.smpCnt == after(second);
        if (!isFirst && !isSecond) {
            return false;
        }
        (isFirst ? first : second) = packet.smpCnt;
        ++(isFirst ? firsts : seconds);
        isPast = isPast || (isFirst && packet.smpCnt == start);
        if (isOnSecond == isFirst) {
            isOnSecond = !isOnSecond;
            ++turns;
            inTurn = 0;
        }
        if (++inTurn > kMostInTurn) {
            return false;
        }
        unsigned const wanted = isNear ? kFew : kMany;
        if (firsts >= wanted && seconds >= wanted && turns >= wanted && (isPast || !isNear)) {
            return true;
        }
    }
    return suspects_.size() >= kMostSuspects ? std::optional(false) : std::nullopt;
}

void SvSupervisor::beginSecond() {
    SvObservation const& start = suspects_.front();
    second_ = Second();
    second_->counter = SampleCounter(course_.count);
    second_->last = start;
    // Counted when it is taken.
    second_->finding = finding(FindingKind::twoPublishers, start);
    second_->finding.count = 0;
    second_->finding.expected = numberOf(after(last_.smpCnt));
    second_->finding.found = numberOf(start.smpCnt);
}

bool SvSupervisor::isOfSecond(SvObservation const& packet) const {
    if (!packet.isCounted || !isStarted_ || packet.smpCnt == after(last_.smpCnt)) {
        return false;
    }
    auto const wrap = std::int64_t{course_.count.wrap};
    auto const awayFrom = [&](std::uint32_t smpCnt) {
        std::int64_t const away = std::abs(std::int64_t{packet.smpCnt} - std::int64_t{smpCnt});
        return std::min(away, std::abs(wrap - away));
    };
    return packet.smpCnt == after(second_->last.smpCnt) ||
           awayFrom(second_->last.smpCnt) < awayFrom(last_.smpCnt);
}

void SvSupervisor::takeForSecond(SvObservation const& packet, FindingSink sink) {
    Second& second = *second_;
    std::int64_t const newestBefore = second.counter.newest();
    CountStep const step = second.counter.add(packet.smpCnt, packet.arrival);
    Finding made = finding(FindingKind::sampleGap, packet);
    made.before = FindingPlace{.packet = second.last.packet, .time = second.last.arrival};
    made.expected = numberOf(after(second.last.smpCnt));
    made.found = numberOf(packet.smpCnt);
    switch (step) {
        case CountStep::next:
            if (second.counter.newest() > newestBefore + 1) {
                made.lost = static_cast<std::uint64_t>(second.counter.newest() - newestBefore - 1);
                made.cause = LossCause::unknown;
                sink(made);
            }
            second.last = packet;
            break;
        case CountStep::late:
        case CountStep::repeated:
            made.kind = step == CountStep::late ? FindingKind::late : FindingKind::repeated;
            sink(made);
            break;
        default:
            second.counter = SampleCounter(course_.count);
            static_cast<void>(second.counter.add(packet.smpCnt, packet.arrival));
            second.last = packet;
            break;
    }
    heard_ = packet.arrival;
    ++second.finding.count;
    second.finding.until = packet.arrival;
    second.missed = 0;
    if (++second.alone > kGonePackets) {
        // The first one is gone: this one takes its place.
        settleGaps(true, sink);
        endRun();
        counter_ = second.counter;
        last_ = second.last;
        beginRun();
        beginJitter(sink);
        endSecond(sink);
    }
}

void SvSupervisor::endSecond(FindingSink sink) {
    if (second_) {
        sink(second_->finding);
        second_.reset();
    }
}

void SvSupervisor::take(SvObservation const& packet, FindingSink sink) {
    if (!packet.isCounted) {
        takeUncounted(packet, sink);
        return;
    }
    if (!isStarted_) {
        checkSilence(packet, sink);
        begin(packet, sink);
        return;
    }
    if (second_) {
        second_->alone = 0;
        if (++second_->missed > kGonePackets) {
            endSecond(sink);
        }
    }
    if (packet.way != last_.way && takeFromOtherWay(packet)) {
        return;
    }
    takeCounted(packet, sink);
    heard_ = packet.arrival;
}

void SvSupervisor::takeCounted(SvObservation const& packet, FindingSink sink) {
    std::int64_t const newestBefore = counter_.newest();
    CountStep const step = counter_.add(packet.smpCnt, packet.arrival);
    switch (step) {
        case CountStep::next:
            takeNext(packet, newestBefore, sink);
            break;
        case CountStep::late:
            fill(counter_.number());
            report(FindingKind::late, packet, numberOf(after(last_.smpCnt)),
                   numberOf(packet.smpCnt), sink);
            break;
        case CountStep::repeated:
            if (isExtraCopy(last_.sequence, packet.sequence)) {
                break;
            }
            report(FindingKind::repeated, packet, numberOf(after(last_.smpCnt)),
                   numberOf(packet.smpCnt), sink);
            break;
        case CountStep::restart:
            checkSilence(packet, sink);
            report(FindingKind::counterRestart, packet, numberOf(after(last_.smpCnt)),
                   numberOf(packet.smpCnt), sink);
            begin(packet, sink);
            break;
        case CountStep::pause:
        case CountStep::clockStep:
        case CountStep::first:
            checkSilence(packet, sink);
            begin(packet, sink);
            break;
    }
}

void SvSupervisor::takeUncounted(SvObservation const& packet, FindingSink sink) {
    checkSilence(packet, sink);
    settleGaps(true, sink);
    checkSynch(packet, sink);
    beginJitter(sink);
    endRun();
    isStarted_ = false;
    last_ = packet;
    heard_ = packet.arrival;
}

void SvSupervisor::begin(SvObservation const& packet, FindingSink sink) {
    settleGaps(true, sink);
    checkSynch(packet, sink);
    endRun();
    counter_ = SampleCounter(course_.count);
    static_cast<void>(counter_.add(packet.smpCnt, packet.arrival));
    beginJitter(sink);
    isStarted_ = true;
    last_ = packet;
    beginRun();
    // It is the first of a frame, whatever its number.
    jitter_.add(counter_.newest(), packet.arrival, packet.packet,
                [&](Deviation const& away) { reportAway(away, sink); });
    heard_ = packet.arrival;
}

void SvSupervisor::beginRun() {
    if (last_.arrival != kNoTime) {
        run_ = Run{.number = counter_.newest(), .arrival = last_.arrival, .asdu = last_.asdu};
    }
}

void SvSupervisor::endRun() {
    if (run_ && last_.arrival != kNoTime && last_.arrival > run_->arrival) {
        // Without a sign, the difference of any two is exact.
        auto const time = static_cast<double>(static_cast<std::uint64_t>(last_.arrival) -
                                              static_cast<std::uint64_t>(run_->arrival));
        // All ASDUs of a frame arrive at once.
        std::int64_t const atOnce = std::int64_t{last_.asdu} - std::int64_t{run_->asdu};
        if (time > longestTime_) {
            longestTime_ = time;
            longestSamples_ = static_cast<double>(counter_.newest() - run_->number - atOnce);
        }
    }
    run_.reset();
}

std::optional<double> SvSupervisor::measuredRate() const {
    constexpr double kNanoseconds = 1e9;
    return longestTime_ > 0 && longestSamples_ > 0
               ? std::optional(longestSamples_ * kNanoseconds / longestTime_)
               : std::nullopt;
}

void SvSupervisor::beginJitter(FindingSink sink) {
    auto const half = wholeNanoseconds(course_.count.interval * course_.inFrame / 2);
    jitter_.begin(course_.count.interval, jitterLimit_.value_or(half),
                  [&](Deviation const& away) { reportAway(away, sink); });
    endAway(sink);
}

void SvSupervisor::takeNext(SvObservation const& packet, std::int64_t newestBefore,
                            FindingSink sink) {
    std::int64_t const advance = counter_.newest() - newestBefore;
    if (advance == 1) {
        checkSilence(packet, sink);
    } else if (isJump(packet, advance)) {
        report(FindingKind::counterRestart, packet, numberOf(after(last_.smpCnt)),
               numberOf(packet.smpCnt), sink);
        begin(packet, sink);
        return;
    } else {
        if (gaps_.size() == kMostSampleGaps) {
            settleGaps(true, sink);
        }
        gaps_.push_back({.first = newestBefore + 1,
                         .end = counter_.newest(),
                         .lost = static_cast<std::uint64_t>(advance - 1),
                         .before = last_,
                         .after = packet,
                         .filled = {}});
    }
    checkSynch(packet, sink);
    goOn(packet, sink);
    settleGaps(false, sink);
}

/// Whether arrival has gone on by about one frame, while the counter went further.
bool SvSupervisor::isJump(SvObservation const& packet, std::int64_t advance) const {
    if (packet.arrival == kNoTime || last_.arrival == kNoTime) {
        return false;
    }
    // The frame before may have come late, and this one in time.
    double const late = std::max(0.0, static_cast<double>(jitter_.lastAway()));
    double const passed =
        static_cast<double>(packet.arrival) - static_cast<double>(last_.arrival) + late;
    return course_.count.isJump(advance, passed, course_.inFrame);
}

/// Takes what another way brings after the one that was first.
bool SvSupervisor::takeFromOtherWay(SvObservation const& packet) {
    std::uint32_t const wrap = course_.count.wrap;
    bool const isTimed = packet.arrival != kNoTime && last_.arrival != kNoTime;
    bool const isTooLate =
        isTimed && packet.arrival > last_.arrival && packet.arrival - last_.arrival > kCopyTime;
    if (packet.smpCnt >= wrap || last_.smpCnt >= wrap || isTooLate) {
        return false;
    }
    std::uint32_t const behind = (last_.smpCnt + wrap - packet.smpCnt) % wrap;
    double const most = course_.count.interval > 0
                            ? static_cast<double>(kCopyTime) / course_.count.interval
                            : static_cast<double>(SampleCounter::kMostBehind);
    if (behind > most || behind >= wrap / 2) {
        return false;
    }
    copies_ += fill(counter_.newest() - std::int64_t{behind}) ? 0U : 1U;
    heard_ = packet.arrival;
    return true;
}

bool SvSupervisor::fill(std::int64_t number) {
    bool isFilled = false;
    for (Gap& gap : gaps_) {
        if (number >= gap.first && number < gap.end &&
            std::find(gap.filled.begin(), gap.filled.end(), number) == gap.filled.end()) {
            gap.filled.push_back(number);
            --gap.lost;
            isFilled = true;
        }
    }
    return isFilled;
}

void SvSupervisor::settleGaps(bool areAll, FindingSink sink) {
    std::size_t settled = 0;
    for (; settled < gaps_.size(); ++settled) {
        Gap const& gap = gaps_[settled];
        bool const isTimed = last_.arrival != kNoTime && gap.after.arrival != kNoTime;
        bool const mayBeCopied =
            course_.isRedundant && isTimed && last_.arrival - gap.after.arrival < kCopyTime;
        bool const mayFill =
            counter_.newest() - gap.end < SampleCounter::kMostBehind || mayBeCopied;
        if (!areAll && mayFill) {
            break;
        }
        if (gap.lost > 0) {
            Finding made = finding(FindingKind::sampleGap, gap.after);
            made.before = FindingPlace{.packet = gap.before.packet, .time = gap.before.arrival};
            made.expected = numberOf(after(gap.before.smpCnt));
            made.found = numberOf(gap.after.smpCnt);
            made.lost = gap.lost;
            made.cause = LossCause::unknown;
            sink(made);
        }
    }
    gaps_.erase(gaps_.begin(), gaps_.begin() + static_cast<std::ptrdiff_t>(settled));
}

void SvSupervisor::checkSynch(SvObservation const& packet, FindingSink sink) {
    if (packet.smpSynch == SvObservation::kNoSynch) {
        return;
    }
    if (synch_ && synchLevelOf(*synch_) != synchLevelOf(packet.smpSynch)) {
        report(synchLevelOf(packet.smpSynch) < synchLevelOf(*synch_) ? FindingKind::synchLost
                                                                     : FindingKind::synchRegained,
               packet, numberOf(*synch_), numberOf(packet.smpSynch), sink);
    }
    synch_ = packet.smpSynch;
}

void SvSupervisor::checkSilence(SvObservation const& packet, FindingSink sink) {
    if (silence_ == 0 || packet.arrival == kNoTime || heard_ == kNoTime ||
        last_.arrival == kNoTime) {
        return;
    }
    std::int64_t const last = std::max(heard_, last_.arrival);
    if (packet.arrival > last && packet.arrival - last > silence_) {
        report(FindingKind::silent, packet, instantOf(shiftedTime(last, silence_)),
               instantOf(packet.arrival), sink);
    }
}

void SvSupervisor::reportAway(Deviation const& away, FindingSink sink) {
    if (away.isFirst || !away_) {
        endAway(sink);
        away_ = Finding();
        away_->kind = FindingKind::jitter;
        away_->protocol = StreamProtocol::sv;
        away_->from = away.arrival;
        away_->until = away.arrival;
        away_->expected = numberOf(
            jitterLimit_.value_or(wholeNanoseconds(course_.count.interval * course_.inFrame / 2)));
        away_->found = numberOf(away.away);
        away_->place = {.packet = away.packet, .time = away.arrival};
        if (away.before) {
            away_->before = FindingPlace{.packet = *away.before};
        }
        return;
    }
    ++away_->count;
    away_->until = away.arrival;
    if (std::abs(away.away) > std::abs(std::get<std::int64_t>(away_->found))) {
        away_->found = numberOf(away.away);
    }
}

void SvSupervisor::endAway(FindingSink sink) {
    if (away_) {
        sink(*away_);
        away_.reset();
    }
}

void SvSupervisor::finish(std::int64_t end, FindingSink sink) {
    settleSuspects(true, sink);
    endSecond(sink);
    settleGaps(true, sink);
    jitter_.finish([&](Deviation const& away) { reportAway(away, sink); });
    endAway(sink);
    endRun();
    std::int64_t const last = heard_ == kNoTime ? kNoTime : std::max(heard_, last_.arrival);
    if (silence_ > 0 && last != kNoTime && end != kNoTime && end > last && end - last > silence_) {
        Finding made = finding(FindingKind::silent, last_);
        made.before = made.place;
        made.place.reset();
        made.from = end;
        made.until = end;
        made.expected = instantOf(shiftedTime(last, silence_));
        made.found = instantOf(end);
        sink(made);
    }
}

}  // namespace TalIec61850Analysis::detail
