#include "tools/render/ValueText.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/packet/DoublePoint.hpp>
#include <array>
#include <chrono>
#include <cstddef>

#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

namespace {

std::string clockText(std::chrono::milliseconds time) {
    std::chrono::hh_mm_ss const clock(time);
    return fmt::format("{:02}:{:02}:{:02}.{:03}", clock.hours().count(), clock.minutes().count(),
                       clock.seconds().count(), clock.subseconds().count());
}

}  // namespace

std::string toHex(OctetString const& octets) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * octets.size());
    for (std::uint8_t const octet : octets) {
        text += kDigits[octet >> 4U];
        text += kDigits[octet & 0x0FU];
    }
    return text;
}

std::string toText(BitString const& bits) {
    std::string text;
    text.reserve(bits.size());
    for (std::size_t i = 0; i < bits.size(); ++i) {
        text += bits[i] ? '1' : '0';
    }
    return text;
}

std::string_view dbposReading(BitString const& bits) {
    constexpr std::array<std::string_view, 4> kPositions = {"intermediate-state", "off", "on",
                                                            "bad-state"};
    auto const position = TalIec61850Analysis::readDoublePoint(toView(bits));
    return position ? kPositions[static_cast<std::size_t>(*position)] : std::string_view();
}

std::string toText(ObjectId const& id) { return fmt::format("{}", fmt::join(id.arcs, ".")); }

std::string_view toText(DataKind kind) {
    switch (kind) {
        case DataKind::array:
            return "array";
        case DataKind::structure:
            return "structure";
        case DataKind::boolean:
            return "boolean";
        case DataKind::bitString:
            return "bit-string";
        case DataKind::integer:
            return "integer";
        case DataKind::unsignedNumber:
            return "unsigned";
        case DataKind::floatingPoint:
            return "floating-point";
        case DataKind::octetString:
            return "octet-string";
        case DataKind::visibleString:
            return "visible-string";
        case DataKind::binaryTime:
            return "binary-time";
        case DataKind::bcd:
            return "bcd";
        case DataKind::booleanArray:
            return "booleanArray";
        case DataKind::objectId:
            return "objId";
        case DataKind::mmsString:
            return "mMSString";
        case DataKind::utcTime:
            return "utc-time";
        case DataKind::unknown:
            return "unknown";
        case DataKind::unreadable:
            return "unreadable";
    }
    return "";
}

std::string smpSynchText(std::uint64_t smpSynch) {
    constexpr std::uint64_t kFirstClock = 5;
    constexpr std::uint64_t kLastClock = 254;
    if (smpSynch == 0) {
        return "none";
    }
    if (smpSynch == 1) {
        return "local";
    }
    if (smpSynch == 2) {
        return "global";
    }
    bool const isClock = smpSynch >= kFirstClock && smpSynch <= kLastClock;
    return isClock ? fmt::format("clock {}", smpSynch) : "reserved";
}

std::string_view smpModText(std::uint64_t smpMod) {
    switch (smpMod) {
        case 0:
            return "samplesPerPeriod";
        case 1:
            return "samplesPerSecond";
        case 2:
            return "secondsPerSample";
        default:
            return "reserved";
    }
}

std::string toIsoText(UtcTime const& time) {
    return toUtcText(TalIec61850Analysis::makeCaptureTime(time.seconds, time.nanoseconds()));
}

std::string toIsoText(BinaryTime const& time) {
    namespace ch = std::chrono;
    ch::milliseconds const sinceMidnight(time.milliseconds);
    if (!time.days) {
        return clockText(sinceMidnight);
    }
    constexpr ch::sys_days kFirstDay = ch::year(1984) / ch::January / 1;
    auto const point = kFirstDay + ch::days(*time.days) + sinceMidnight;
    auto const midnight = ch::floor<ch::days>(point);
    ch::year_month_day const date(midnight);
    return fmt::format("{:04}-{:02}-{:02}T{}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clockText(point - midnight));
}

}  // namespace TalIec61850Tools
