#include "tools/render/UtcText.hpp"

#include <fmt/format.h>

#include <algorithm>
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
    constexpr std::size_t decimals = 9;
    constexpr std::uint32_t oneSecond = 1'000'000'000;  // as a leading 1 it keeps the zeros
    auto const second = std::chrono::floor<std::chrono::seconds>(time);
    fmt::format_int const digits(oneSecond + static_cast<std::uint32_t>((time - second).count()));
    std::array<char, SecondText::kSize + decimals + 1> text{};
    auto* const end =
        std::copy_n(secondTextOf(second).text.begin(), SecondText::kSize, text.begin());
    std::copy_n(digits.data() + 1, decimals, end);
    text.back() = 'Z';
    return ShortText({text.data(), text.size()});
}

std::string toUtcText(TalIec61850Analysis::CaptureTime time) {
    return std::string(toUtcCell(time).view());
}

}  // namespace TalIec61850Tools
