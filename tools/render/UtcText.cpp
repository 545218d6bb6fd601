#include "tools/render/UtcText.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>

#include "tools/output/NineDigits.hpp"

namespace TalIec61850Tools {

namespace {

/// Writes a number so that its last digit is before `end`.
/// @return its first digit
char* writeDigits(char* end, std::uint64_t number, int digits) {
    for (int i = 0; i < digits; ++i) {
        *--end = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    return end;
}

/// The text of a time up to its seconds, "2023-11-14T22:13:20.".
struct SecondText {
    static constexpr std::size_t kSize = 20;

    std::chrono::sys_seconds second = std::chrono::sys_seconds::min();
    std::array<char, kSize> text{};
};

SecondText makeSecondText(std::chrono::sys_seconds second) {
    auto const midnight = std::chrono::floor<std::chrono::days>(second);
    std::chrono::year_month_day const date(midnight);
    std::chrono::hh_mm_ss const clock(second - midnight);
    SecondText made{.second = second, .text = {}};
    // From the end to the start; the year of a time has four digits.
    char* at = made.text.data() + made.text.size();
    auto const put = [&at](auto number, int digits, char after) {
        *--at = after;
        at = writeDigits(at, static_cast<std::uint64_t>(number), digits);
    };
    put(clock.seconds().count(), 2, '.');
    put(clock.minutes().count(), 2, ':');
    put(clock.hours().count(), 2, ':');
    put(static_cast<unsigned>(date.day()), 2, 'T');
    put(static_cast<unsigned>(date.month()), 2, '-');
    put(static_cast<int>(date.year()), 4, '-');
    return made;
}

/// Rows that follow each other are mostly of the same seconds: few texts are made anew.
SecondText const& secondTextOf(std::chrono::sys_seconds second) {
    thread_local std::array<SecondText, 4> known;
    SecondText& text =
        known[static_cast<std::uint64_t>(second.time_since_epoch().count()) % known.size()];
    if (text.second != second) {
        text = makeSecondText(second);
    }
    return text;
}

}  // namespace

ShortText toUtcCell(TalIec61850Analysis::CaptureTime time) {
    auto const second = std::chrono::floor<std::chrono::seconds>(time);
    auto const nanoseconds = static_cast<std::uint32_t>((time - second).count());
    auto const& upToSecond = secondTextOf(second).text;
    ShortText::Octets text{};
    char* const fraction = std::copy(upToSecond.begin(), upToSecond.end(), text.data());
    char* const end = writeNineDigits(fraction, nanoseconds);
    *end = 'Z';
    return {text, static_cast<std::size_t>(end + 1 - text.data())};
}

std::string toUtcText(TalIec61850Analysis::CaptureTime time) {
    return std::string(toUtcCell(time).view());
}

}  // namespace TalIec61850Tools
