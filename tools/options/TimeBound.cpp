#include "tools/options/TimeBound.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace TalIec61850Tools {

namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr std::size_t kDecimals = 9;
/// The start of the year 2201.
constexpr std::int64_t kMaxSeconds = 7'289'654'400;

/// Reads a text from its front to its end.
class TimeReader {
public:
    explicit TimeReader(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }
    [[nodiscard]] std::string_view rest() const { return rest_; }

    bool take(char wanted) {
        if (!rest_.starts_with(wanted)) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    /// Takes the digits at the front, if there are `minDigits` to `maxDigits`.
    std::optional<std::int64_t> takeNumber(std::size_t minDigits, std::size_t maxDigits) {
        auto const digits = rest_.substr(0, rest_.find_first_not_of("0123456789"));
        std::int64_t number = 0;
        if (digits.size() < minDigits || digits.size() > maxDigits) {
            return std::nullopt;
        }
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
        rest_.remove_prefix(digits.size());
        return number;
    }

    /// Takes a point and the decimals after it; 0 if there is no point.
    /// @return in units of 10^-9
    std::optional<std::int64_t> takeDecimals() {
        if (!take('.')) {
            return 0;
        }
        std::size_t const before = rest_.size();
        auto number = takeNumber(1, kDecimals);
        for (std::size_t digits = before - rest_.size(); number && digits < kDecimals; ++digits) {
            *number *= 10;
        }
        return number;
    }

private:
    std::string_view rest_;
};

/// A number of units with decimals, in nanoseconds; none if that is too long.
std::optional<nanoseconds> takeLength(TimeReader& reader, nanoseconds (*unitOf)(std::string_view)) {
    auto const whole = reader.takeNumber(1, 18);
    auto const decimals = reader.takeDecimals();
    nanoseconds const unit = unitOf(reader.rest());
    if (!whole || !decimals || unit.count() == 0 ||
        *whole >= nanoseconds(seconds(kMaxSeconds)) / unit) {
        return std::nullopt;
    }
    // In two parts, so that hours with nine decimals do not overflow either.
    constexpr std::int64_t giga = 1'000'000'000;
    std::int64_t const part =
        *decimals * (unit.count() / giga) + *decimals * (unit.count() % giga) / giga;
    return nanoseconds(*whole * unit.count() + part);
}

nanoseconds noUnit(std::string_view name) { return name.empty() ? seconds(1) : seconds(0); }

nanoseconds unitNamed(std::string_view name) {
    struct Unit {
        std::string_view name;
        nanoseconds length;
    };
    constexpr std::array<Unit, 7> units = {{{"", seconds(1)},
                                            {"s", seconds(1)},
                                            {"ms", std::chrono::milliseconds(1)},
                                            {"us", std::chrono::microseconds(1)},
                                            {"ns", nanoseconds(1)},
                                            {"min", std::chrono::minutes(1)},
                                            {"h", std::chrono::hours(1)}}};
    auto const* const found = std::find_if(units.begin(), units.end(),
                                           [&](Unit const& unit) { return unit.name == name; });
    return found == units.end() ? nanoseconds(0) : found->length;
}

std::optional<nanoseconds> takeDate(TimeReader& reader) {
    auto const year = reader.takeNumber(4, 4);
    bool const hasMonth = year && reader.take('-');
    auto const month = hasMonth ? reader.takeNumber(2, 2) : std::nullopt;
    bool const hasDay = month && reader.take('-');
    auto const day = hasDay ? reader.takeNumber(2, 2) : std::nullopt;
    if (!day || *year < 1970 || *year > 2200) {
        return std::nullopt;
    }
    std::chrono::year_month_day const date(std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day)));
    return date.ok() ? std::optional<nanoseconds>(std::chrono::sys_days(date).time_since_epoch())
                     : std::nullopt;
}

/// Hours and minutes, and seconds with decimals if there are any.
std::optional<nanoseconds> takeClock(TimeReader& reader) {
    auto const hour = reader.takeNumber(2, 2);
    bool const hasMinute = hour && reader.take(':');
    auto const minute = hasMinute ? reader.takeNumber(2, 2) : std::nullopt;
    if (!minute || *hour > 23 || *minute > 59) {
        return std::nullopt;
    }
    nanoseconds const time = std::chrono::hours(*hour) + std::chrono::minutes(*minute);
    if (!reader.take(':')) {
        return time;
    }
    auto const second = reader.takeNumber(2, 2);
    auto const decimals = reader.takeDecimals();
    if (!second || !decimals || *second > 59) {
        return std::nullopt;
    }
    return time + seconds(*second) + nanoseconds(*decimals);
}

/// Z or an offset from UTC, such as +01:00; none of them is UTC as well.
/// @return how far the clock is ahead of UTC; none if there is something else
std::optional<nanoseconds> takeZone(TimeReader& reader) {
    if (reader.isAtEnd()) {
        return nanoseconds(0);
    }
    if (reader.take('Z')) {
        return reader.isAtEnd() ? std::optional(nanoseconds(0)) : std::nullopt;
    }
    bool const isBehind = reader.take('-');
    bool const hasSign = isBehind || reader.take('+');
    auto const hours = hasSign ? reader.takeNumber(2, 2) : std::nullopt;
    bool const hasMinutes = hours && reader.take(':');
    auto const minutes = hasMinutes ? reader.takeNumber(2, 2) : std::nullopt;
    if (!minutes || *hours > 23 || *minutes > 59 || !reader.isAtEnd()) {
        return std::nullopt;
    }
    nanoseconds const offset = std::chrono::hours(*hours) + std::chrono::minutes(*minutes);
    return isBehind ? -offset : offset;
}

bool isWithinYears(nanoseconds time) {
    return time.count() >= 0 && time < nanoseconds(seconds(kMaxSeconds));
}

std::optional<TimeBound> readDateAndTime(TimeReader reader) {
    auto const date = takeDate(reader);
    if (!date || reader.isAtEnd()) {
        return date ? std::optional(TimeBound{.time = *date}) : std::nullopt;
    }
    bool const hasClock = reader.take('T') || reader.take(' ');
    auto const clock = hasClock ? takeClock(reader) : std::nullopt;
    auto const ahead = clock ? takeZone(reader) : std::nullopt;
    bool const isTime = ahead && isWithinYears(*date + *clock - *ahead);
    return isTime ? std::optional(TimeBound{.time = *date + *clock - *ahead}) : std::nullopt;
}

std::optional<TimeBound> readTimeOfDay(TimeReader reader) {
    auto const clock = takeClock(reader);
    auto const ahead = clock ? takeZone(reader) : std::nullopt;
    return ahead ? std::optional(
                       TimeBound{.origin = TimeOrigin::day, .time = *clock, .aheadOfUtc = *ahead})
                 : std::nullopt;
}

std::optional<TimeBound> readLength(TimeReader reader, TimeOrigin origin,
                                    nanoseconds (*unitOf)(std::string_view)) {
    auto const length = takeLength(reader, unitOf);
    return length ? std::optional(TimeBound{.origin = origin, .time = *length}) : std::nullopt;
}

/// Midnight of the day on which the captures start, by a clock that is ahead of UTC.
CaptureTime midnight(CaptureTime begin, nanoseconds ahead) {
    CaptureTime const latest = CaptureTime::max() - std::chrono::days(3);
    return std::chrono::floor<std::chrono::days>(std::min(begin, latest) + ahead) - ahead;
}

}  // namespace

CaptureTime TimeBound::resolve(CaptureSpan const& captures) const {
    switch (origin) {
        case TimeOrigin::begin:
            return time > CaptureTime::max() - captures.begin ? CaptureTime::max()
                                                              : captures.begin + time;
        case TimeOrigin::end:
            return captures.end - time;
        case TimeOrigin::day:
            return midnight(captures.begin, aheadOfUtc) + time;
        default:
            return CaptureTime(time);
    }
}

bool TimeBound::isSurelyBefore(TimeBound const& other) const {
    if (origin != other.origin || aheadOfUtc != other.aheadOfUtc) {
        return false;
    }
    return origin == TimeOrigin::end ? time > other.time : time < other.time;
}

std::optional<TimeBound> parseTimeBound(std::string_view text) {
    constexpr std::size_t afterHour = 2;
    TimeReader reader(text);
    if (reader.take('+')) {
        return readLength(reader, TimeOrigin::begin, unitNamed);
    }
    if (reader.take('-')) {
        return readLength(reader, TimeOrigin::end, unitNamed);
    }
    if (text.find(':') == afterHour) {
        return readTimeOfDay(reader);
    }
    return text.find('-') != std::string_view::npos ? readDateAndTime(reader)
                                                    : readLength(reader, TimeOrigin::epoch, noUnit);
}

}  // namespace TalIec61850Tools
