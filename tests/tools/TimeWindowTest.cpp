// How the ends of a window of time are read.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <limits>
#include <string>

#include "tools/options/TimeBound.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools::TimeWindowTest {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr std::int64_t kGiga = 1'000'000'000;
/// 2200-12-31T23:59:59
constexpr std::int64_t kLastSecond = 7'289'654'399;

/// The time of a bound with this origin, in nanoseconds; -1 for any other.
std::int64_t timeFrom(TimeOrigin origin, std::string_view text) {
    auto const bound = parseTimeBound(text);
    return bound && bound->origin == origin ? bound->time.count() : -1;
}

std::int64_t absolute(std::string_view text) { return timeFrom(TimeOrigin::epoch, text); }
std::int64_t relative(std::string_view text) { return timeFrom(TimeOrigin::begin, text); }
std::int64_t beforeEnd(std::string_view text) { return timeFrom(TimeOrigin::end, text); }
std::int64_t timeOfDay(std::string_view text) { return timeFrom(TimeOrigin::day, text); }

bool isRefused(std::string_view text) { return !parseTimeBound(text).has_value(); }

TEST(TimeBound, IsADateAndTime) {
    EXPECT_EQ(absolute("2024-03-20T10:00:00.28Z"), 1'710'928'800'280'000'000);
    EXPECT_EQ(absolute("2024-03-20 10:00:00.28"), 1'710'928'800'280'000'000);
    EXPECT_EQ(absolute("2024-03-20T10:00:00"), 1'710'928'800 * kGiga);
    EXPECT_EQ(absolute("2024-03-20T10:00Z"), 1'710'928'800 * kGiga);
    EXPECT_EQ(absolute("2024-03-20T10:00"), 1'710'928'800 * kGiga);
    EXPECT_EQ(absolute("2024-03-20"), 1'710'892'800 * kGiga);
    EXPECT_EQ(absolute("2024-03-20T23:59:59.999999999"), 1'710'979'199'999'999'999);
}

TEST(TimeBound, ReachesFrom1970To2200) {
    EXPECT_EQ(absolute("1970-01-01"), 0);
    EXPECT_EQ(absolute("1970-01-01T00:00:00.000000001Z"), 1);
    EXPECT_EQ(absolute("2200-12-31T23:59:59.999999999"), kLastSecond * kGiga + 999'999'999);
    EXPECT_EQ(absolute("7289654399.999999999"), kLastSecond * kGiga + 999'999'999);
    for (auto const* text : {"1969-12-31", "2201-01-01", "9999-12-31", "0000-01-01", "10000-01-01",
                             "7289654401", "99999999999"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(TimeBound, BeyondTheYear2200IsRefusedInSecondsToo) {
    EXPECT_TRUE(isRefused("7289654400"));
    EXPECT_TRUE(isRefused("7289654400.5"));
}

TEST(TimeBound, KnowsTheCalendar) {
    EXPECT_EQ(absolute("2024-02-29"), 1'709'164'800 * kGiga);
    EXPECT_EQ(absolute("2000-02-29"), 951'782'400 * kGiga);
    for (auto const* text : {"2023-02-29", "2100-02-29", "2024-02-30", "2024-02-31", "2024-04-31",
                             "2024-00-10", "2024-13-01", "2024-01-00", "2024-01-32"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(TimeBound, KnowsTheClock) {
    for (auto const* text : {"2024-03-20T24:00",
                             "2024-03-20T23:60",
                             "2024-03-20T23:59:60",
                             "2024-03-20T1:00",
                             "2024-03-20T10:0",
                             "2024-03-20T10:00:0",
                             "2024-03-20T",
                             "2024-03-20T10:",
                             "2024-03-20T10:00:",
                             "2024-03-20T10:00:00.",
                             "2024-03-20T10:00:00.1234567890",
                             "2024-03-20T10:00:00ZZ",
                             "2024-03-20T10:00:00+1:00",
                             "2024-03-20T10:00:00+01",
                             "2024-03-20T10:00:00+24:00",
                             "2024-03-20T10:00:00+01:60",
                             "2024-03-20T10:00:00+01:00Z",
                             "2024-03-20T10:00:00Z+01:00",
                             "2024-03-20T10:00:00+-1:00",
                             "2024-03-20+01:00",
                             "2024-03-20T10:00:00 Z",
                             "2024-03-20  10:00",
                             " 2024-03-20"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(TimeBound, IsANumberOfSecondsSince1970) {
    EXPECT_EQ(absolute("0"), 0);
    EXPECT_EQ(absolute("1710928800"), 1'710'928'800 * kGiga);
    EXPECT_EQ(absolute("1710928800.28"), 1'710'928'800'280'000'000);
    EXPECT_EQ(absolute("1710928800.000000001"), 1'710'928'800'000'000'001);
    EXPECT_EQ(absolute("0001.5"), 1'500'000'000);
    for (auto const* text : {"",
                             ".",
                             ".5",
                             "5.",
                             "1.1234567890",
                             "1,5",
                             "1e9",
                             "0x10",
                             "1s",
                             "1 ",
                             " 1",
                             "1.5.5",
                             "1.-5",
                             "--5",
                             "nan",
                             "inf",
                             "18446744073709551617",
                             "9223372036854775808",
                             "00000000000000000001",
                             "\xd9\xa1",
                             "now"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
    EXPECT_TRUE(isRefused(std::string_view("1\0", 2)));
}

TEST(TimeBound, IsADistanceFromTheBegin) {
    EXPECT_EQ(relative("+0s"), 0);
    EXPECT_EQ(relative("+1.5s"), 1'500'000'000);
    EXPECT_EQ(relative("+7ns"), 7);
    EXPECT_EQ(relative("+7us"), 7'000);
    EXPECT_EQ(relative("+7.25ms"), 7'250'000);
    EXPECT_EQ(relative("+2min"), 120 * kGiga);
    EXPECT_EQ(relative("+0.5h"), 1800 * kGiga);
    EXPECT_EQ(relative("+1.999999999h"), 7'199'999'996'400);
    EXPECT_EQ(relative("+1.999999999min"), 119'999'999'940);
    for (auto const* text : {"+", "+s", "+-1s", "++1s", "+1 s", "+1S", "+1m", "+1d", "+1.s", "+.5s",
                             "+1sec", "+1s ", "1.5s", "+2024-03-20"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(TimeBound, IsADistanceFromTheEnd) {
    EXPECT_EQ(beforeEnd("-0s"), 0);
    EXPECT_EQ(beforeEnd("-5s"), 5 * kGiga);
    EXPECT_EQ(beforeEnd("-1.5"), 1'500'000'000);
    EXPECT_EQ(beforeEnd("-7.25ms"), 7'250'000);
    for (auto const* text : {"-", "-s", "--1s", "-+1s", "-1 s", "-1d", "-2024-03-20", "-10:00"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(TimeBound, IsATimeOfDay) {
    EXPECT_EQ(timeOfDay("10:00"), 36'000 * kGiga);
    EXPECT_EQ(timeOfDay("00:00:00.000000001Z"), 1);
    EXPECT_EQ(timeOfDay("23:59:59.28"), 86'399'280'000'000);
    EXPECT_EQ(timeOfDay("10:00:00+01:00"), 36'000 * kGiga);
    EXPECT_EQ(parseTimeBound("10:00+01:30")->aheadOfUtc, std::chrono::minutes(90));
    EXPECT_EQ(parseTimeBound("10:00-01:30")->aheadOfUtc, -std::chrono::minutes(90));
    for (auto const* text :
         {"24:00", "10:60", "10:00:60", "1:00", "10:", "10:0", "10:00:", "10:00s", "10:00 Z",
          "10:00+1", "+10:00", "10:00:00.", "::", "010:00"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(TimeBound, OfAClockAheadOfUtcIsEarlier) {
    EXPECT_EQ(absolute("2024-03-20T11:00:00+01:00"), absolute("2024-03-20T10:00:00Z"));
    EXPECT_EQ(absolute("2024-03-20 04:30:00.5-05:30"), absolute("2024-03-20T10:00:00.5"));
    EXPECT_EQ(absolute("2024-03-20T00:30+01:00"), absolute("2024-03-19T23:30"));
    EXPECT_EQ(absolute("1970-01-01T01:00+01:00"), 0);
    EXPECT_TRUE(isRefused("1970-01-01T00:59+01:00"));
    EXPECT_TRUE(isRefused("2200-12-31T23:00-01:00"));
}

TEST(TimeBound, OfADayIsOnTheDayOnWhichTheCapturesBegin) {
    auto const resolved = [](std::string_view text, std::string_view begin) {
        CaptureTime const time(nanoseconds(absolute(begin)));
        return toUtcText(parseTimeBound(text)->resolve({.begin = time, .end = time}));
    };
    EXPECT_EQ(resolved("10:00", "2024-03-20T23:59:59"), "2024-03-20T10:00:00.000000000Z");
    EXPECT_EQ(resolved("10:00", "2024-03-20"), "2024-03-20T10:00:00.000000000Z");
    // At 23:30 UTC it is the next day already where clocks are an hour ahead.
    EXPECT_EQ(resolved("00:45+01:00", "2024-03-20T23:30"), "2024-03-20T23:45:00.000000000Z");
    EXPECT_EQ(resolved("23:00-02:00", "2024-03-20T01:30"), "2024-03-20T01:00:00.000000000Z");
}

TEST(TimeBound, DoesNotOverflowWhateverTheUnit) {
    for (auto const* unit : {"ns", "us", "ms", "s", "min", "h", ""}) {
        for (std::size_t digits = 1; digits <= 40; ++digits) {
            std::string const text = "+" + std::string(digits, '9') + ".999999999" + unit;
            auto const bound = parseTimeBound(text);
            EXPECT_TRUE(!bound || (bound->time.count() > 0 &&
                                   bound->time <= nanoseconds(seconds(kLastSecond + 2))))
                << text;
        }
        EXPECT_TRUE(isRefused("+999999999999999999999" + std::string(unit)));
    }
    EXPECT_TRUE(isRefused("+999999999999999999h"));
}

TEST(TimeBound, FromTheBeginLiesBehindItHoweverFar) {
    CaptureTime const latest{seconds(std::numeric_limits<std::uint32_t>::max())};
    for (auto const* text : {"+0s", "+1ns", "+1h", "+1000000h", "+2000000h", "+7000000000s"}) {
        auto const bound = parseTimeBound(text);
        ASSERT_TRUE(bound) << text;
        EXPECT_GE(bound->resolve({.begin = latest, .end = latest}).time_since_epoch().count(),
                  latest.time_since_epoch().count())
            << text;
    }
}

TEST(TimeBound, ResolvesToItselfUnlessItIsADistance) {
    CaptureSpan const captures{.begin = CaptureTime(seconds(1000)),
                               .end = CaptureTime(seconds(2000))};
    EXPECT_EQ(parseTimeBound("5")->resolve(captures), CaptureTime(seconds(5)));
    EXPECT_EQ(parseTimeBound("+5s")->resolve(captures), CaptureTime(seconds(1005)));
    EXPECT_EQ(parseTimeBound("-5s")->resolve(captures), CaptureTime(seconds(1995)));
}

std::int64_t anyTime() {
    return *rc::gen::resize(rc::kNominalSize,
                            rc::gen::inRange<std::int64_t>(0, (kLastSecond + 1) * kGiga));
}

RC_GTEST_PROP(AnyTimeBound, IsReadAsItIsWritten, ()) {
    std::int64_t const time = anyTime();
    std::string const text = toUtcText(CaptureTime(nanoseconds(time)));
    RC_ASSERT(absolute(text) == time);
    RC_ASSERT(absolute(text.substr(0, text.size() - 1)) == time);
    RC_ASSERT(absolute(text.substr(0, 19)) == time / kGiga * kGiga);
    RC_ASSERT(absolute(text.substr(0, 16)) == time / (60 * kGiga) * (60 * kGiga));
    RC_ASSERT(absolute(text.substr(0, 10)) == time / (86'400 * kGiga) * (86'400 * kGiga));
    std::string decimals = std::to_string(time % kGiga);
    decimals.insert(0, 9 - decimals.size(), '0');
    std::string const number = std::to_string(time / kGiga) + "." + decimals;
    RC_ASSERT(absolute(number) == time);
    RC_ASSERT(relative("+" + number + "s") == time);
    RC_ASSERT(relative("+" + std::to_string(time / 1000) + "us") == time / 1000 * 1000);
}

/// A text made of what times are made of, or of one that is changed in a place.
std::string anyText() {
    std::string const pool = "0123456789999.-:TZ +smhnui";
    std::string text = *rc::gen::container<std::string>(rc::gen::elementOf(pool));
    if (*rc::gen::arbitrary<bool>()) {
        text = toUtcText(CaptureTime(nanoseconds(anyTime())));
        text[*rc::gen::inRange<std::size_t>(0, text.size())] = *rc::gen::elementOf(pool);
    }
    return text;
}

RC_GTEST_PROP(AnyTimeBound, IsWithinTheYearsOrRefused, ()) {
    std::string const text = anyText();
    auto const bound = parseTimeBound(text);
    RC_CLASSIFY(bound.has_value(), "read");
    if (bound) {
        RC_ASSERT(bound->time.count() >= 0);
        RC_ASSERT(bound->time <= nanoseconds(seconds(kLastSecond + 2)));
        RC_ASSERT((bound->origin == TimeOrigin::begin) == text.starts_with('+'));
    }
}

}  // namespace
}  // namespace TalIec61850Tools::TimeWindowTest
