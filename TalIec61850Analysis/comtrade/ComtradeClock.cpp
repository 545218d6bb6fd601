#include <TalIec61850Analysis/comtrade/ComtradeClock.hpp>

namespace TalIec61850Analysis::detail {

namespace {

// NOLINTNEXTLINE(modernize-use-using): a using cannot be marked as an extension
__extension__ typedef unsigned __int128 Wide;

constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::uint64_t kMicrosecondsPerSecond = 1'000'000;

bool hasNanoseconds(ComtradeRecord const& record) {
    return record.format.edition == ComtradeEdition::of2013 &&
           nanosecondsOf(record.start) % 1000 != 0;
}

/// The stamp of the last row, rounded to the nearest unit.
Wide lastStamp(ComtradeRecord const& record, std::uint64_t unitsPerSecond, Wide multiplier) {
    Wide const divisor = record.rate.samples * multiplier;
    Wide const units = Wide{record.rows - 1} * record.rate.seconds * unitsPerSecond;
    return (units + divisor / 2) / divisor;
}

/// The highest stamp that the data hold. It is the multiplier that keeps ASCII below.
Wide highestStamp(ComtradeFormat format) {
    if (format.data != ComtradeData::ascii) {
        return kMissingStamp - 1;
    }
    return format.edition == ComtradeEdition::of1999 ? 9'999'999'999U : 9'999'999'999'999U;
}

}  // namespace

bool endsInTime(ComtradeRecord const& record) noexcept {
    constexpr auto last = std::numeric_limits<std::int64_t>::max();
    std::int64_t const start = nanosecondsOf(record.start);
    Wide const room = static_cast<std::uint64_t>(last) - static_cast<std::uint64_t>(start);
    return lastStamp(record, kNanosecondsPerSecond, 1) <= room;
}

ComtradeClock::ComtradeClock(ComtradeRecord const& record) noexcept
    : isInNanoseconds_(hasNanoseconds(record)) {
    std::uint64_t const unitsPerSecond =
        isInNanoseconds_ ? kNanosecondsPerSecond : kMicrosecondsPerSecond;
    Wide const highest = highestStamp(record.format);
    if (record.format.data == ComtradeData::ascii) {
        while (lastStamp(record, unitsPerSecond, multiplier_) > highest) {
            multiplier_ *= 10;
        }
    } else if (lastStamp(record, unitsPerSecond, 1) > highest) {
        stay();
        return;
    }
    // A record ends before the year 2262, so that the multiplier has no more than eight digits.
    divisor_ = record.rate.samples * multiplier_;
    std::uint64_t const units = record.rate.seconds * unitsPerSecond;
    whole_ = units / divisor_;
    remainder_ = units % divisor_;
    part_ = divisor_ / 2;
}

void ComtradeClock::stay() noexcept {
    stamp_ = kMissingStamp;
    whole_ = 0;
    remainder_ = 0;
}

}  // namespace TalIec61850Analysis::detail
