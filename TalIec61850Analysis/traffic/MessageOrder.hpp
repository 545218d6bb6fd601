#pragma once

// Internal: in which order a publisher sent GOOSE messages, by their counters.

#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// stNum and sqNum of a message.
struct MessageNumber {
    std::uint32_t stNum = 0;
    std::uint32_t sqNum = 0;

    friend bool operator==(MessageNumber const&, MessageNumber const&) = default;
};

/// The steps from one counter to a later one. Counters begin again at 1 after their largest value.
[[nodiscard]] std::uint64_t stepsBetween(std::uint32_t before, std::uint32_t now);

/// Whether a counter is later: the larger one, unless it has just begun again.
[[nodiscard]] bool isLater(std::uint32_t now, std::uint32_t before);

/// Whether a message is later.
[[nodiscard]] bool isLater(MessageNumber now, MessageNumber before);

/// Whether a message is the next one after another: of its state, or the first of the next state.
[[nodiscard]] bool isNext(MessageNumber now, MessageNumber before);

/// What a message is to the newest one of its stream.
enum class MessageTurn : std::uint8_t {
    later,         ///< the newest now
    same,          ///< its counters again
    restart,       ///< counters begin anew: what was before has expired
    mayBeRestart,  ///< the message after it tells: see isRestart
    older,         ///< late, or sent again
};

/// @param isOtherWay  the message came over another LAN, lane or tap than the newest one
/// @param isExpired   bool isExpired(): whether it came after the time allowed to live of the
///                    newest one; asked only where that decides
template <typename IsExpired>
[[nodiscard]] MessageTurn turnOf(MessageNumber now, MessageNumber newest, bool isOtherWay,
                                 IsExpired const& isExpired) {
    if (isLater(now, newest)) {
        return MessageTurn::later;
    }
    if (now == newest) {
        return MessageTurn::same;
    }
    bool const isOtherState = now.stNum != newest.stNum;
    if (!isOtherState && now.sqNum > 1) {
        return MessageTurn::older;
    }
    if (isExpired()) {
        // What the other way brings late, and a late start of the same state, look alike.
        bool const isCertain = isOtherState && !isOtherWay;
        return isCertain ? MessageTurn::restart : MessageTurn::mayBeRestart;
    }
    return now.stNum == 1 && !isOtherWay ? MessageTurn::mayBeRestart : MessageTurn::older;
}

/// Whether counters did begin anew with a message that may be a restart; otherwise it is older.
/// @param next    the message after it, of any way
/// @param newest  the one before it
[[nodiscard]] inline bool isRestart(MessageNumber message, MessageNumber next,
                                    MessageNumber newest) {
    return isNext(next, message) && !isNext(next, newest);
}

/// When a message expires, in nanoseconds; kNoTime where that cannot be told.
/// @param arrival            in nanoseconds, or kNoTime
/// @param timeAllowedtoLive  in milliseconds; 0 and more than a week tell nothing
[[nodiscard]] inline std::int64_t expiryOf(std::int64_t arrival,
                                           std::optional<std::int64_t> timeAllowedtoLive) {
    constexpr std::int64_t kLongest = 1'000'000'000;  // milliseconds: more than a week
    constexpr std::int64_t kNsOfMillisecond = 1'000'000;
    bool const isTold = timeAllowedtoLive && *timeAllowedtoLive > 0 &&
                        *timeAllowedtoLive <= kLongest && arrival != kNoTime;
    return isTold ? shiftedTime(arrival, *timeAllowedtoLive * kNsOfMillisecond) : kNoTime;
}

}  // namespace TalIec61850Analysis::detail
