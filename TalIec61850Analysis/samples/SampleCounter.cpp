#include <TalIec61850Analysis/samples/SampleCounter.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>
#include <cmath>

namespace TalIec61850Analysis::detail {

namespace {

/// What the clock of a capture, and the way to it, may be wrong by from one packet to the next.
constexpr double kClockStep = 100e6;
/// A pause in nanoseconds: nothing is taken for lost.
constexpr double kLongPause = 600e9;
/// A frame may come so many frames sooner than the ones lost before it would have it.
constexpr double kEarlyFrames = 4;

}  // namespace

CountStep SampleCounter::begin(std::uint32_t smpCnt, std::int64_t arrival) {
    isStarted_ = true;
    // A wrap up: late samples may come before the first, and numbers are not negative.
    number_ = std::int64_t{rule_.wrap} + smpCnt;
    newest_ = number_;
    arrival_ = arrival;
    smpCnt_ = smpCnt;
    seen_ = 1;
    return CountStep::first;
}

void SampleCounter::stepClock(std::int64_t step) {
    if (arrival_ != kNoTime) {
        arrival_ = shiftedTime(arrival_, step);
    }
}

CountStep SampleCounter::addBehind(std::int64_t behind) {
    number_ = newest_ - behind;
    std::uint64_t const bit = std::uint64_t{1} << static_cast<unsigned>(behind);
    bool const wasSeen = (seen_ & bit) != 0;
    seen_ |= bit;
    return wasSeen ? CountStep::repeated : CountStep::late;
}

CountStep SampleCounter::addUnusual(std::uint32_t smpCnt, std::int64_t arrival) {
    if (!isStarted_) {
        return begin(smpCnt, arrival);
    }
    if (smpCnt >= rule_.wrap || smpCnt_ >= rule_.wrap) {
        return CountStep::restart;
    }
    auto const wrap = static_cast<std::int64_t>(rule_.wrap);
    std::int64_t const ahead =
        (static_cast<std::int64_t>(smpCnt) - static_cast<std::int64_t>(smpCnt_) + wrap) % wrap;
    std::int64_t const behind = ahead == 0 ? 0 : wrap - ahead;
    bool const isTimed = arrival != kNoTime && arrival_ != kNoTime && rule_.interval > 0;
    if (!isTimed) {
        if (behind <= kMostBehind && behind < wrap / 2) {
            return addBehind(behind);
        }
        return ahead < wrap / 2 ? goTo(newest_ + ahead, smpCnt, arrival) : CountStep::restart;
    }

    double const since = static_cast<double>(arrival) - static_cast<double>(arrival_);
    if (since > kLongPause) {
        return CountStep::pause;
    }
    double const passed = since / rule_.interval;  // in samples
    double const wraps = std::max(
        0.0, std::round((passed - static_cast<double>(ahead)) / static_cast<double>(wrap)));
    std::int64_t advance = ahead + static_cast<std::int64_t>(wraps) * wrap;
    if (advance == 0) {
        advance = wrap;
    }
    double const awayAhead = std::abs(passed - static_cast<double>(advance));
    double const awayBehind = std::abs(passed + static_cast<double>(behind));
    if (behind <= kMostBehind && awayBehind < awayAhead) {
        return addBehind(behind);
    }
    double const atOnce = rule_.atOnce;
    double const tolerance = std::max(kClockStep / rule_.interval, 2 * kEarlyFrames * atOnce);
    bool const fits = awayAhead <= tolerance &&
                      passed >= static_cast<double>(advance) / 2 - kEarlyFrames * atOnce;
    if (fits) {
        return goTo(newest_ + advance, smpCnt, arrival);
    }
    return ahead == 1 ? CountStep::clockStep : CountStep::restart;
}

}  // namespace TalIec61850Analysis::detail
