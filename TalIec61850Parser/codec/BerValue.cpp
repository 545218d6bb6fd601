#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/wire/Hex.hpp>
#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <ctime>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace TalIec61850Parser::detail {

namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::uint64_t kNanosecondsPerMillisecond = 1'000'000;

void appendHex(std::string& text, std::uint8_t octet) {
    wire::appendHex(text, octet, wire::kUpperHexDigits);
}

std::string toPlainHex(Octets value) {
    std::string text = "0x";
    text.reserve(2 + 2 * value.size());
    for (std::uint8_t const octet : value) {
        appendHex(text, octet);
    }
    return text;
}

bool isPrintable(std::uint8_t octet) { return octet >= 0x20 && octet <= 0x7E; }

/// "%Y-%m-%d %H:%M:%S" in UTC and then `suffix`; nullopt where the year does not fit the calendar's
/// int.
std::optional<std::string> toCalendar(std::int64_t secondsSince1970, std::string_view suffix) {
    std::time_t const seconds = secondsSince1970;
    std::tm calendar{};
    if (gmtime_r(&seconds, &calendar) == nullptr) {
        return std::nullopt;
    }
    std::array<char, 100> text{};
    std::size_t const size =
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &calendar);
    std::string result;
    result.reserve(size + suffix.size());
    return result.append(text.data(), size).append(suffix);
}

/// Whole seconds, cut toward zero; the smallest number for what no such number can hold.
std::int64_t toWholeSeconds(double seconds) {
    constexpr double limit = 9223372036854775808.0;          // 2^63
    bool const fits = seconds >= -limit && seconds < limit;  // false for a NaN as well
    return fits ? static_cast<std::int64_t>(seconds) : std::numeric_limits<std::int64_t>::min();
}

std::string secondsToDateTime(std::int64_t seconds, Octets value) {
    auto calendar = toCalendar(seconds, " UTC");
    return calendar ? *std::move(calendar) : toPlainHex(value);
}

/// Day and time of day, one octet each, after two octets of milliseconds; nothing is checked.
std::string dayTimeToDateTime(Octets value) {
    std::array<char, 100> text{};
    std::snprintf(text.data(), text.size(), "1984-01-%02d %02d:%02d:%02d.%03d UTC", value[5],
                  value[4], value[3], value[2], readBigEndian<std::uint16_t>(value));
    return text.data();
}

}  // namespace

std::string toHexDump(Octets value) {
    std::string text;
    text.reserve(1 + 3 * value.size());
    for (std::uint8_t const octet : value) {
        text += text.empty() ? '[' : ' ';
        appendHex(text, octet);
    }
    if (!text.empty()) {
        text += ']';
    }
    return text;
}

std::string toText(Octets value) {
    return std::all_of(value.begin(), value.end(), isPrintable)
               ? std::string(value.begin(), value.end())
               : toHexDump(value);
}

std::string gooseTimeToDateTime(Octets value) {
    switch (value.size()) {
        case 0:
            return "Empty timestamp";
        case 8: {
            auto const seconds = std::bit_cast<double>(readBigEndian<std::uint64_t>(value));
            return secondsToDateTime(toWholeSeconds(seconds), value);
        }
        case 6:
            return dayTimeToDateTime(value);
        case 4:
            return secondsToDateTime(readBigEndian<std::uint32_t>(value), value);
        default:
            return toPlainHex(value);
    }
}

std::string timestampToDecimal(Octets value) {
    if (value.empty()) {
        return "0";
    }
    if (value.size() == 8 || value.size() == 4) {
        return std::to_string(readBigEndian<std::uint64_t>(value));
    }
    std::string text;
    for (std::uint8_t const octet : value) {
        text += std::to_string(octet);
    }
    return text;
}

std::string referenceTimeToDateTime(Octets value) {
    if (value.size() < sizeof(std::uint64_t)) {
        return "Invalid refrTm data";
    }
    auto const count = readBigEndian<std::uint64_t>(value);
    auto const milliseconds =
        static_cast<unsigned>(count % kNanosecondsPerSecond / kNanosecondsPerMillisecond);
    std::array<char, 12> suffix{};
    std::snprintf(suffix.data(), suffix.size(), ".%03u UTC", milliseconds);
    auto const seconds = static_cast<std::int64_t>(count / kNanosecondsPerSecond);
    return toCalendar(seconds, suffix.data()).value_or("Invalid time");
}

}  // namespace TalIec61850Parser::detail
