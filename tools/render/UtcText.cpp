#include "tools/render/UtcText.hpp"

#include <array>
#include <chrono>
#include <cstdint>

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

}  // namespace

ShortText toUtcCell(TalIec61850Analysis::CaptureTime time) {
    auto const midnight = std::chrono::floor<std::chrono::days>(time);
    std::chrono::year_month_day const date(midnight);
    std::chrono::hh_mm_ss const clock(time - midnight);
    // From the end to the start; the year of a time has four digits.
    std::array<char, 30> text{};
    char* at = text.data() + text.size();
    auto const put = [&at](auto number, int digits, char after) {
        *--at = after;
        at = writeDigits(at, static_cast<std::uint64_t>(number), digits);
    };
    put(clock.subseconds().count(), 9, 'Z');
    put(clock.seconds().count(), 2, '.');
    put(clock.minutes().count(), 2, ':');
    put(clock.hours().count(), 2, ':');
    put(static_cast<unsigned>(date.day()), 2, 'T');
    put(static_cast<unsigned>(date.month()), 2, '-');
    put(static_cast<int>(date.year()), 4, '-');
    return ShortText({text.data(), text.size()});
}

std::string toUtcText(TalIec61850Analysis::CaptureTime time) {
    return std::string(toUtcCell(time).view());
}

}  // namespace TalIec61850Tools
