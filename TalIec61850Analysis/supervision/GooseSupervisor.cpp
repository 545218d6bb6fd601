#include <TalIec61850Analysis/supervision/DataComparison.hpp>
#include <TalIec61850Analysis/supervision/FindingValues.hpp>
#include <TalIec61850Analysis/supervision/GooseSupervisor.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Analysis/traffic/MessageOrder.hpp>
#include <algorithm>
#include <cmath>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

constexpr std::int64_t kNsOfMillisecond = 1'000'000;
constexpr std::int64_t kNsOfSecond = 1'000'000'000;
/// Messages after a gap in which a late one may fill it.
constexpr std::uint32_t kLateMessages = 16;
constexpr std::size_t kMostMessageGaps = 64;
/// So many older messages in sequence are those of another publisher.
constexpr std::size_t kSecondPublisher = 4;
/// A time allowed to live that comes so often again is the longest of its stream.
constexpr std::uint32_t kSteadyLives = 4;
/// A sqNum from which on it is no chance that a new state goes on where the one before was.
constexpr std::uint32_t kFarSqNum = 4;
/// One of two publishers is gone after so many messages of the other one.
constexpr std::uint32_t kGoneMessages = 64;

/// What a time may be wrong by, as it says, in nanoseconds.
std::int64_t accuracyOf(UtcTime const& t) {
    constexpr std::uint8_t kMostBits = 24;
    return t.accuracy() <= kMostBits ? kNsOfSecond >> t.accuracy() : 0;
}

MessageNumber messageNumberOf(GooseObservation const& message) {
    return {message.stNum, message.sqNum};
}

FindingValue countOrNothing(std::optional<std::int64_t> value) {
    return value ? FindingValue(*value) : FindingValue();
}

FindingValue octetsOf(std::optional<std::string_view> text) {
    return text ? FindingValue(OctetString(text->begin(), text->end())) : FindingValue();
}

}  // namespace

Finding GooseSupervisor::finding(FindingKind kind, GooseObservation const& message) const {
    Finding finding;
    finding.kind = kind;
    finding.protocol = StreamProtocol::goose;
    finding.from = message.arrival;
    finding.until = message.arrival;
    finding.place = {.packet = message.packet, .time = message.arrival};
    if (isStarted_) {
        finding.before = {.packet = last_.packet, .time = last_.arrival};
    }
    return finding;
}

void GooseSupervisor::edge(bool& isOn, bool isNow, FindingKind kind,
                           GooseObservation const& message, FindingSink sink, FindingValue expected,
                           FindingValue found) const {
    if (isNow && !isOn) {
        Finding made = finding(kind, message);
        made.expected = std::move(expected);
        made.found = std::move(found);
        sink(made);
    }
    isOn = isNow;
}

void GooseSupervisor::lasting(Condition& condition, bool isNow, FindingKind kind,
                              GooseObservation const& message, FindingSink sink,
                              FindingValue expected, FindingValue found) const {
    if (!isNow) {
        end(condition, sink);
        return;
    }
    condition.isMet = true;
    if (condition.finding) {
        ++condition.finding->count;
        condition.finding->until = message.arrival;
        return;
    }
    condition.finding = finding(kind, message);
    condition.finding->expected = std::move(expected);
    condition.finding->found = std::move(found);
}

void GooseSupervisor::end(Condition& condition, FindingSink sink) {
    if (condition.finding) {
        sink(*condition.finding);
        condition.finding.reset();
    }
    condition.isMet = false;
}

void GooseSupervisor::pass(Condition& condition, FindingSink sink) {
    if (!std::exchange(condition.isMet, false)) {
        end(condition, sink);
    }
}

/// Ends what is compared with the content before.
void GooseSupervisor::endContents(FindingSink sink) {
    end(changed_, sink);
    end(retimed_, sink);
    end(relived_, sink);
}

void GooseSupervisor::add(GooseObservation const& message, FindingSink sink) {
    bool const isPlain = message.isSame && isContentLast_ && message.isCounted &&
                         message.stNum == number_.stNum && message.sqNum == number_.sqNum + 1 &&
                         message.isSimulated == lastSimulatedBit_ && message.way == last_.way;
    bool const isLasting = changed_.finding || retimed_.finding || relived_.finding ||
                           expired_.finding || repeated_.finding || replayed_.finding;
    bool const isQuiet = isStarted_ && !candidate_ && gaps_.empty() && older_.empty() && !second_ &&
                         !isLasting && isLifeSteady_ && life_.settled;
    if (isPlain && isQuiet && !isLate(message)) {
        number_.sqNum = message.sqNum;
        seen_.addNewest(number_);
        last_ = message;
        setDeadline(message);
        return;
    }
    if (candidate_) {
        settleCandidate(message, false, sink);
    }
    process(message, sink);
}

bool GooseSupervisor::isLate(GooseObservation const& message) const {
    return deadline_ != kNoTime && message.arrival != kNoTime && message.arrival > deadline_;
}

void GooseSupervisor::process(GooseObservation const& message, FindingSink sink) {
    if (!message.isCounted) {
        isContentLast_ = false;
        return;
    }
    if (!isStarted_) {
        begin(message, false, sink);
        return;
    }
    bool const isOtherWay = message.way != last_.way;
    switch (
        turnOf(messageNumberOf(message), number_, isOtherWay, [&] { return isLate(message); })) {
        case MessageTurn::later:
            accept(message, sink);
            return;
        case MessageTurn::same:
            isContentLast_ = isContentLast_ && message.isSame;
            copies_ += isOtherWay ? 1U : 0U;
            if (!isOtherWay && !isExtraCopy(last_.sequence, message.sequence)) {
                lasting(repeated_, true, FindingKind::repeated, message, sink);
                checkRepeatedData(message, sink);
                // It is in time for the ones after it.
                if (isLate(message)) {
                    checkExpiry(message, sink);
                }
                setDeadline(message);
            }
            return;
        case MessageTurn::restart:
            checkExpiry(message, sink);
            begin(message, true, sink);
            return;
        case MessageTurn::mayBeRestart:
            hold(message);
            return;
        case MessageTurn::older:
            takeOlder(message, sink);
            return;
    }
}

void GooseSupervisor::begin(GooseObservation const& message, bool isRestart, FindingSink sink) {
    if (isRestart) {
        settleGaps(true, sink);
        settleOlder(sink);
        if (second_) {
            sink(*second_);
            second_.reset();
        }
        endContents(sink);
        Finding made = finding(FindingKind::counterRestart, message);
        bool const isSameState = message.stNum == number_.stNum;
        made.expected = isSameState ? std::int64_t{number_.sqNum} + 1 : std::int64_t{number_.stNum};
        made.found = std::int64_t{isSameState ? message.sqNum : message.stNum};
        sink(made);
        if (message.sqNum > 1) {
            addGap(FindingKind::stateStartMissing, message, message.stNum, 1, message.sqNum,
                   message.sqNum - 1);
        }
    }
    ++states_;
    checkContent(message, true, false, sink);
    checkFlags(message, sink);
    number_ = messageNumberOf(message);
    seen_.begin(number_);
    last_ = message;
    lastSimulatedBit_ = message.isSimulated;
    isStarted_ = true;
    setDeadline(message);
}

void GooseSupervisor::hold(GooseObservation const& message) {
    isContentLast_ = false;
    candidate_ = Candidate();
    candidate_->message = message;
    candidate_->message.content = nullptr;
    candidate_->message.isSame = false;
    candidate_->hasContent = message.content != nullptr;
    if (message.content != nullptr) {
        candidate_->content = *message.content;
        if (auto const& data = message.content->allData) {
            candidate_->allData = toOwned(*data);
        }
        candidate_->datSet = message.content->datSet.value_or("");
    }
}

/// Decides by the next message whether the counters were begun anew.
void GooseSupervisor::settleCandidate(GooseObservation const& next, bool isOver, FindingSink sink) {
    Candidate held = std::move(*candidate_);
    candidate_.reset();
    GooseObservation message = held.message;
    if (held.hasContent) {
        if (held.content.allData) {
            held.content.allData = held.allData;
        }
        if (held.content.datSet) {
            held.content.datSet = held.datSet;
        }
        message.content = &held.content;
    }
    if (!isOver && next.isCounted &&
        isRestart(messageNumberOf(message), messageNumberOf(next), number_)) {
        checkExpiry(message, sink);
        begin(message, true, sink);
        // The next one was compared with the one that was held.
        isContentLast_ = held.hasContent;
    } else if (!isOver) {
        takeOlder(message, sink);
    }  // else nobody knows what it was
}

void GooseSupervisor::accept(GooseObservation const& message, FindingSink sink) {
    checkExpiry(message, sink);
    MessageNumber const before = number_;
    bool const isNewState = message.stNum != before.stNum;
    states_ += isNewState ? 1U : 0U;
    std::uint64_t const states = isNewState ? stepsBetween(before.stNum, message.stNum) : 0;
    if (!isNewState) {
        std::uint64_t const steps = stepsBetween(before.sqNum, message.sqNum);
        if (steps > 1) {
            addGap(FindingKind::sqNumGap, message, message.stNum, before.sqNum + 1, message.sqNum,
                   steps - 1);
        }
    } else {
        if (states > 1) {
            addGap(FindingKind::stateGap, message, message.stNum, before.stNum + 1, message.stNum,
                   states - 1);
        }
        checkStart(message, states == 1, sink);
    }
    pass(repeated_, sink);
    pass(replayed_, sink);
    checkContent(message, isNewState, states == 1, sink);
    checkFlags(message, sink);
    number_ = messageNumberOf(message);
    seen_.addNewest(number_);
    last_ = message;
    lastSimulatedBit_ = message.isSimulated;
    setDeadline(message);
    settleGaps(false, sink);
    if (!older_.empty() && ++sinceOlder_ > kLateMessages) {
        settleOlder(sink);
    }
    if (second_ && ++sinceSecond_ > kGoneMessages) {
        sink(*second_);
        second_.reset();
    }
}

/// Whether the first messages of a new state are there.
void GooseSupervisor::checkStart(GooseObservation const& message, bool isNextState,
                                 FindingSink sink) {
    // After its largest value, stNum begins with sqNum 1.
    std::uint32_t const first = message.stNum < number_.stNum ? 1 : 0;
    if (message.sqNum <= first) {
        return;
    }
    if (isNextState && number_.sqNum >= kFarSqNum && message.sqNum == number_.sqNum + 1) {
        // The publisher counts on: there were no such messages.
        Finding made = finding(FindingKind::stateStartMissing, message);
        made.expected = std::int64_t{first};
        made.found = std::int64_t{message.sqNum};
        sink(made);
        return;
    }
    addGap(FindingKind::stateStartMissing, message, message.stNum, first, message.sqNum,
           message.sqNum - first);
}

void GooseSupervisor::takeOlder(GooseObservation const& message, FindingSink sink) {
    isContentLast_ = false;
    MessageNumber const number = messageNumberOf(message);
    bool const isOtherWay = message.way != last_.way;
    if (seen_.has(number)) {
        copies_ += isOtherWay ? 1U : 0U;
        if (!isOtherWay) {
            lasting(replayed_, true, FindingKind::replay, message, sink,
                    std::int64_t{number_.stNum}, std::int64_t{message.stNum});
        }
        return;
    }
    seen_.addOlder(number);
    bool const isFilled = fill(number);
    if (isOtherWay) {
        return;
    }
    Finding made = finding(FindingKind::late, message);
    made.expected = std::int64_t{number_.stNum};
    made.found = std::int64_t{message.stNum};
    if (second_ && (isNext(number, secondNumber_) || number == secondNumber_)) {
        ++second_->count;
        second_->until = message.arrival;
        secondNumber_ = number;
        sinceSecond_ = 0;
        return;
    }
    if (isFilled) {
        sink(made);
        return;
    }
    if (!older_.empty() && !isNext(number, older_.back().number)) {
        settleOlder(sink);
    }
    older_.push_back({.number = number, .finding = made});
    sinceOlder_ = 0;
    if (older_.size() == kSecondPublisher && !second_) {
        beginSecond(message);
    }
}

/// The older messages are those of a second publisher, up to this one.
void GooseSupervisor::beginSecond(GooseObservation const& message) {
    second_ = older_.front().finding;
    second_->kind = FindingKind::twoPublishers;
    second_->count = older_.size();
    second_->until = message.arrival;
    secondNumber_ = messageNumberOf(message);
    sinceSecond_ = 0;
    older_.clear();
}

void GooseSupervisor::settleOlder(FindingSink sink) {
    for (Older const& older : older_) {
        sink(older.finding);
    }
    older_.clear();
}

bool GooseSupervisor::fill(MessageNumber number) {
    bool isFilled = false;
    for (Gap& gap : gaps_) {
        if (gap.finding.kind == FindingKind::stateGap) {
            bool const isOf = !isLater(gap.first, number.stNum) && isLater(gap.end, number.stNum);
            if (isOf &&
                std::find(gap.filled.begin(), gap.filled.end(), number.stNum) == gap.filled.end()) {
                gap.filled.push_back(number.stNum);
                --gap.finding.lost;
            }
            isFilled = isFilled || isOf;
        } else if (gap.stNum == number.stNum && gap.finding.lost > 0 &&
                   !isLater(gap.first, number.sqNum) && isLater(gap.end, number.sqNum)) {
            --gap.finding.lost;
            isFilled = true;
        }
    }
    return isFilled;
}

void GooseSupervisor::addGap(FindingKind kind, GooseObservation const& message, std::uint32_t stNum,
                             std::uint32_t first, std::uint32_t end, std::uint64_t lost) {
    if (gaps_.size() == kMostMessageGaps) {
        gaps_.front().since = kLateMessages;
    }
    Gap gap{.finding = finding(kind, message),
            .stNum = stNum,
            .first = first,
            .end = end,
            .filled = {}};
    gap.finding.lost = lost;
    gap.finding.cause = LossCause::unknown;
    gap.finding.expected = std::int64_t{first};
    gap.finding.found = std::int64_t{end};
    gaps_.push_back(std::move(gap));
}

void GooseSupervisor::settleGaps(bool areAll, FindingSink sink) {
    std::erase_if(gaps_, [&](Gap& gap) {
        bool const isOver = areAll || ++gap.since > kLateMessages;
        if (isOver && gap.finding.lost > 0) {
            sink(gap.finding);
        }
        return isOver;
    });
}

void GooseSupervisor::checkContent(GooseObservation const& message, bool isNewState,
                                   bool isNextState, FindingSink sink) {
    if (message.content == nullptr) {
        isContentLast_ = false;
        endContents(sink);
        return;
    }
    GooseContent const& now = *message.content;
    bool const isKnown = content_.isWhole;
    bool const isSame = message.isSame && isContentLast_;
    if (isKnown && !isSame && now.confRev != content_.confRev) {
        Finding made = finding(FindingKind::confRevChanged, message);
        made.expected = countOrNothing(content_.confRev);
        made.found = countOrNothing(now.confRev);
        sink(made);
    }
    bool isOtherSet = false;
    if (isKnown && !isSame && now.datSet != content_.datSet) {
        Finding made = finding(FindingKind::dataSetChanged, message);
        made.expected = octetsOf(content_.datSet);
        made.found = octetsOf(now.datSet);
        sink(made);
        isOtherSet = true;
    }
    if (isKnown && now.allData && content_.allData) {
        std::vector<QualityChange> qualities;
        DataComparison compared;
        if (!isSame) {
            compared =
                compareData(*content_.allData, *now.allData,
                            [&](QualityChange const& change) { qualities.push_back(change); });
        }
        if (!compared.isSameMake && !isOtherSet) {
            Finding made = finding(FindingKind::dataSetChanged, message);
            made.expected = static_cast<std::int64_t>(countMembers(*content_.allData));
            made.found = static_cast<std::int64_t>(countMembers(*now.allData));
            sink(made);
        }
        if (compared.isSameMake) {
            for (QualityChange& change : qualities) {
                Finding made = finding(FindingKind::qualityChanged, message);
                made.expected = std::int64_t{change.before};
                made.found = std::int64_t{change.now};
                made.member = std::move(change.member);
                sink(made);
            }
        }
        lasting(changed_, !isNewState && compared.isChanged && compared.isSameMake,
                FindingKind::changedWithoutState, message, sink);
        if (isNextState && !compared.isChanged) {
            sink(finding(FindingKind::stateWithoutChange, message));
        }
    }
    if (isKnown && now.t && content_.t) {
        bool const isOtherTime =
            now.t->seconds != content_.t->seconds || now.t->fraction != content_.t->fraction;
        FindingValue const was = instantOf(content_.t->nanosecondsSince1970());
        lasting(retimed_, !isNewState && isOtherTime, FindingKind::timeWithoutState, message, sink,
                was, instantOf(now.t->nanosecondsSince1970()));
        if (isNewState && !isOtherTime) {
            Finding made = finding(FindingKind::timeUnchanged, message);
            made.expected = was;
            made.found = was;
            sink(made);
        }
    }
    checkTime(message, sink);
    checkLifetime(message, isNewState, sink);
    if (!isSame) {
        keep(now);
    }
    content_.timeAllowedtoLive = now.timeAllowedtoLive;
    isContentLast_ = true;
}

/// A message that came again with other data is another one, whatever its counters say. Its data
/// are not kept.
void GooseSupervisor::checkRepeatedData(GooseObservation const& message, FindingSink sink) {
    auto const* const now = message.content;
    if (isContentLast_ || now == nullptr || !now->allData || !content_.allData) {
        return;
    }
    auto const compared =
        compareData(*content_.allData, *now->allData, [](QualityChange const& /*change*/) {});
    if (compared.isChanged && compared.isSameMake) {
        lasting(changed_, true, FindingKind::changedWithoutState, message, sink);
    }
}

void GooseSupervisor::keep(GooseContent const& content) {
    content_.datSet = content.datSet;
    content_.confRev = content.confRev;
    content_.t = content.t;
    if (content.allData) {
        if (!content_.allData) {
            content_.allData.emplace();
        }
        content_.allData->assign(content.allData->begin(), content.allData->end());
    } else {
        content_.allData.reset();
    }
    content_.isWhole = true;
}

void GooseSupervisor::checkFlags(GooseObservation const& message, FindingSink sink) {
    GooseContent const* const content = message.content;
    bool const element = content != nullptr && content->simulation.value_or(false);
    bool const isSimulated = message.isSimulated || (content != nullptr ? element : isSimulated_);
    if (isSimulated != isSimulated_) {
        sink(finding(isSimulated ? FindingKind::simulationBegan : FindingKind::simulationEnded,
                     message));
        isSimulated_ = isSimulated;
    }
    if (content == nullptr) {
        return;
    }
    edge(isContradicted_, content->simulation && element != message.isSimulated,
         FindingKind::simulationContradicts, message, sink,
         std::int64_t{message.isSimulated ? 1 : 0}, std::int64_t{element ? 1 : 0});
    edge(isNeeding_, content->ndsCom.value_or(false), FindingKind::needsCommissioning, message,
         sink);
    if (content->numDatSetEntries) {
        auto const members =
            static_cast<std::int64_t>(content->allData ? countMembers(*content->allData) : 0);
        edge(isOfOtherSize_, *content->numDatSetEntries != members, FindingKind::entriesDiffer,
             message, sink, *content->numDatSetEntries, members);
    }
}

void GooseSupervisor::checkTime(GooseObservation const& message, FindingSink sink) {
    auto const& t = message.content->t;
    if (!t) {
        return;
    }
    edge(isClockFailed_, t->clockFailure(), FindingKind::clockFailure, message, sink);
    edge(isClockFree_, t->clockNotSynchronized(), FindingKind::clockNotSynchronized, message, sink);
    // Repetitions come later than the state that t is of.
    bool const isOther = !content_.t || content_.t->seconds != t->seconds ||
                         content_.t->fraction != t->fraction || !isStarted_;
    if (isOther && message.arrival != kNoTime) {
        std::int64_t const time = t->nanosecondsSince1970();
        edge(isTimeAhead_, time - message.arrival > kNsOfMillisecond + accuracyOf(*t),
             FindingKind::timeAhead, message, sink, instantOf(message.arrival), instantOf(time));
    }
}

/// A time allowed to live that grows within a state, and is short again in the next one, is that of
/// the intervals of repetition.
void GooseSupervisor::checkLifetime(GooseObservation const& message, bool isNewState,
                                    FindingSink sink) {
    auto const& life = message.content->timeAllowedtoLive;
    if (!life) {
        return;
    }
    edge(isLifeZero_, *life == 0, FindingKind::timeAllowedtoLiveZero, message, sink);
    auto const& before = content_.timeAllowedtoLive;
    followLife(message, isNewState, sink);
    bool const isLonger = *life > longestLife_ && isLifeSteady_;
    bool const isShorter = !isNewState && before && *life < *before;
    bool const isChanged = before && (isLonger || isShorter);
    // It may go back and forth.
    lasting(relived_, isChanged || (relived_.finding && before && *life != *before),
            FindingKind::timeAllowedtoLiveChanged, message, sink, countOrNothing(before), *life);
    if (isChanged) {
        longestLife_ = *life;
        life_.settled = *life;
    } else if (*life > longestLife_) {
        longestLife_ = *life;
        isLifeSteady_ = false;
        lives_ = 0;
    } else if (!isNewState && before == life && *life == longestLife_) {
        isLifeSteady_ = isLifeSteady_ || ++lives_ >= kSteadyLives;
    }
}

/// A time that settles in a state, and was longer in the one before, is told of the first message
/// of the state, unless it grows again in the same state.
void GooseSupervisor::followLife(GooseObservation const& message, bool isNewState,
                                 FindingSink sink) {
    std::int64_t const life = *message.content->timeAllowedtoLive;
    bool const isOther = life != life_.value;
    if (isNewState) {
        settleLife(sink);
        life_.settledBefore = life_.settled ? life_.settled : life_.settledBefore;
        life_.first = finding(FindingKind::timeAllowedtoLiveChanged, message);
    } else if (isOther) {
        life_.shorter.reset();
    }
    if (isNewState || isOther) {
        life_.value = life;
        life_.again = 0;
        life_.settled.reset();
        return;
    }
    if (life_.settled || ++life_.again < kSteadyLives) {
        return;
    }
    life_.settled = life;
    if (life_.first && life_.settledBefore && life < *life_.settledBefore) {
        life_.shorter = *life_.first;
        life_.shorter->expected = *life_.settledBefore;
        life_.shorter->found = life;
    }
}

/// The state is over.
void GooseSupervisor::settleLife(FindingSink sink) {
    if (life_.shorter) {
        sink(*life_.shorter);
        longestLife_ = std::get<std::int64_t>(life_.shorter->found);
        life_.shorter.reset();
    }
}

void GooseSupervisor::checkExpiry(GooseObservation const& message, FindingSink sink) {
    if (!isLate(message)) {
        end(expired_, sink);
        return;
    }
    std::int64_t const pause = last_.arrival == kNoTime ? 0 : message.arrival - last_.arrival;
    longestPause_ = expired_.finding ? std::max(longestPause_, pause) : pause;
    lasting(expired_, true, FindingKind::expired, message, sink, instantOf(deadline_),
            instantOf(message.arrival));
}

void GooseSupervisor::setDeadline(GooseObservation const& message) {
    deadline_ = expiryOf(message.arrival, content_.timeAllowedtoLive);
}

void GooseSupervisor::stepClock(std::int64_t step) {
    if (deadline_ != kNoTime) {
        deadline_ = shiftedTime(deadline_, step);
    }
}

void GooseSupervisor::finish(std::int64_t end, FindingSink sink) {
    if (candidate_) {
        settleCandidate({}, true, sink);
    }
    settleGaps(true, sink);
    settleOlder(sink);
    settleLife(sink);
    endContents(sink);
    if (second_) {
        sink(*second_);
        second_.reset();
    }
    checkEnd(end, sink);
    this->end(expired_, sink);
    this->end(repeated_, sink);
    this->end(replayed_, sink);
}

/// Whether the last message has expired.
void GooseSupervisor::checkEnd(std::int64_t end, FindingSink sink) {
    if (!isStarted_ || deadline_ == kNoTime || end == kNoTime || end <= deadline_) {
        return;
    }
    // Where all come too late, the next one is not due yet.
    bool const isUsual = expired_.finding && expired_.finding->count > 1 &&
                         last_.arrival != kNoTime && end - last_.arrival <= longestPause_;
    if (isUsual) {
        return;
    }
    Finding made = finding(FindingKind::expired, last_);
    made.place.reset();
    made.from = end;
    made.until = end;
    made.expected = instantOf(deadline_);
    made.found = instantOf(end);
    sink(made);
}

}  // namespace TalIec61850Analysis::detail
