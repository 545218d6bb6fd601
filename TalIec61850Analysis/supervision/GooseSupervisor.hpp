#pragma once

// Internal: what goes wrong in the course of one GOOSE stream.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/supervision/GooseObservation.hpp>
#include <TalIec61850Analysis/supervision/SeenMessages.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Watches one GOOSE stream, message by message, wherever they come from. Copies over another LAN
/// or lane are to be left out. Findings have their places as packets alone. Memory is bounded.
///
/// Findings come with a delay of some messages: one that is missing may be late, and what looks
/// like a restart may be a replay.
class GooseSupervisor {
public:
    /// A message has come.
    void add(GooseObservation const& message, FindingSink sink);

    /// The clock of the capture is set before the next message.
    /// @param step  in nanoseconds
    void stepClock(std::int64_t step);

    /// No message comes any more.
    /// @param end  of what was captured, in nanoseconds, or kNoTime
    void finish(std::int64_t end, FindingSink sink);

    /// How many states there were, those that are missing not counted.
    [[nodiscard]] std::uint64_t states() const { return states_; }

    /// How many messages were there already when another way brought them.
    [[nodiscard]] std::uint64_t copies() const { return copies_; }

private:
    /// What is kept of a message's content.
    struct Content {
        std::optional<std::int64_t> timeAllowedtoLive;
        std::optional<std::string> datSet;
        std::optional<std::int64_t> confRev;
        std::optional<UtcTime> t;
        std::optional<OctetString> allData;
        bool isWhole = false;
    };
    /// Messages or states that are missing, and may yet come.
    struct Gap {
        Finding finding;
        /// Of messages, the state they are of; of states, the first that is missing.
        std::uint32_t stNum = 0;
        std::uint32_t first = 0;
        std::uint32_t end = 0;
        std::uint32_t since = 0;
        /// Of states: those of which something came late.
        std::vector<std::uint32_t> filled;
    };
    /// An older message that was not seen before.
    struct Older {
        MessageNumber number;
        Finding finding;
    };
    /// A message that may begin the counters anew, and what it holds.
    struct Candidate {
        GooseObservation message;
        bool hasContent = false;
        GooseContent content;
        OctetString allData;
        std::string datSet;
    };
    /// A condition that lasts over messages.
    struct Condition {
        std::optional<Finding> finding;
        /// Whether it was met since the last good message.
        bool isMet = false;
    };
    /// The time allowed to live in the course of a state, and what it settled at.
    struct LifeOfState {
        std::int64_t value = 0;
        /// How often it came again.
        std::uint32_t again = 0;
        std::optional<std::int64_t> settled;
        std::optional<std::int64_t> settledBefore;
        /// Of the first message of the state.
        std::optional<Finding> first;
        /// Shorter than in the state before, and not longer so far.
        std::optional<Finding> shorter;
    };

    void begin(GooseObservation const& message, bool isRestart, FindingSink sink);
    void hold(GooseObservation const& message);
    void settleCandidate(GooseObservation const& next, bool isOver, FindingSink sink);
    void process(GooseObservation const& message, FindingSink sink);
    void accept(GooseObservation const& message, FindingSink sink);
    void takeOlder(GooseObservation const& message, FindingSink sink);
    void beginSecond(GooseObservation const& message);
    void settleOlder(FindingSink sink);
    bool fill(MessageNumber number);
    void addGap(FindingKind kind, GooseObservation const& message, std::uint32_t stNum,
                std::uint32_t first, std::uint32_t end, std::uint64_t lost);
    void settleGaps(bool areAll, FindingSink sink);
    void checkContent(GooseObservation const& message, bool isNewState, bool isNextState,
                      FindingSink sink);
    void checkRepeatedData(GooseObservation const& message, FindingSink sink);
    void checkFlags(GooseObservation const& message, FindingSink sink);
    void checkTime(GooseObservation const& message, FindingSink sink);
    void checkLifetime(GooseObservation const& message, bool isNewState, FindingSink sink);
    void followLife(GooseObservation const& message, bool isNewState, FindingSink sink);
    void settleLife(FindingSink sink);
    void checkStart(GooseObservation const& message, bool isNextState, FindingSink sink);
    void checkEnd(std::int64_t end, FindingSink sink);
    void checkExpiry(GooseObservation const& message, FindingSink sink);
    void setDeadline(GooseObservation const& message);
    void keep(GooseContent const& content);
    [[nodiscard]] bool isLate(GooseObservation const& message) const;

    [[nodiscard]] Finding finding(FindingKind kind, GooseObservation const& message) const;
    /// Tells of the first of messages that have it.
    void edge(bool& isOn, bool isNow, FindingKind kind, GooseObservation const& message,
              FindingSink sink, FindingValue expected = {}, FindingValue found = {}) const;
    /// Tells of all messages in a row that have it at once.
    void lasting(Condition& condition, bool isNow, FindingKind kind,
                 GooseObservation const& message, FindingSink sink, FindingValue expected = {},
                 FindingValue found = {}) const;
    static void end(Condition& condition, FindingSink sink);
    /// Ends it where it was not met between two good messages.
    static void pass(Condition& condition, FindingSink sink);
    void endContents(FindingSink sink);

    MessageNumber number_;
    SeenMessages seen_;
    /// The newest.
    GooseObservation last_;
    /// kNoTime where none can be told.
    std::int64_t deadline_ = kNoTime;
    std::uint64_t states_ = 0;
    std::uint64_t copies_ = 0;
    /// What the last message that counted said.
    Content content_;
    std::optional<Candidate> candidate_;
    std::vector<Gap> gaps_;
    std::vector<Older> older_;
    std::optional<Finding> second_;
    MessageNumber secondNumber_;
    std::uint32_t sinceOlder_ = 0;
    std::uint32_t sinceSecond_ = 0;
    /// The largest time allowed to live, and how often it came again within a state.
    std::int64_t longestLife_ = 0;
    std::uint32_t lives_ = 0;
    LifeOfState life_;
    Condition changed_;
    Condition retimed_;
    Condition relived_;
    Condition expired_;
    Condition repeated_;
    Condition replayed_;
    /// The longest time to a message since messages come after the time allowed to live.
    std::int64_t longestPause_ = 0;

    bool isStarted_ = false;
    bool lastSimulatedBit_ = false;
    /// Whether the message told last is the one that the content is of.
    bool isContentLast_ = false;
    /// Whether the largest time allowed to live came often enough to be that of the stream.
    bool isLifeSteady_ = false;
    bool isSimulated_ = false;
    bool isContradicted_ = false;
    bool isNeeding_ = false;
    bool isOfOtherSize_ = false;
    bool isClockFailed_ = false;
    bool isClockFree_ = false;
    bool isTimeAhead_ = false;
    bool isLifeZero_ = false;
};

}  // namespace TalIec61850Analysis::detail
