#include "bench/SoakCapture.hpp"

#include <algorithm>
#include <stdexcept>

#include "support/StationDevice.hpp"

namespace TalBench {

using TalIec61850Parser::Timest;

namespace {

constexpr std::size_t framesPerSample = 97;

/// What a capture that counts microseconds keeps of a time.
Timest asCaptured(std::uint64_t time) {
    std::uint64_t const fraction = time % TalTest::second;
    return {.seconds = TalTest::stationStart + static_cast<std::uint32_t>(time / TalTest::second),
            .nanoseconds = static_cast<std::uint32_t>(fraction - fraction % TalTest::microsecond)};
}

}  // namespace

SoakCapture::SoakCapture(Workload const& workload)
    : path_(directory_.file(workload.name + ".pcap")) {
    times_.reserve(workload.frames);
    auto const wanted =
        writeCapture(workload, path_, [this](Sent const& sent, std::uint64_t record) {
            Timest const time = asCaptured(sent.time);
            if (times_.size() % framesPerSample == 0) {
                samples_.push_back({time, record + TalTest::recordHeaderSize, sent.frame});
            }
            times_.push_back(time);
        });
    if (wanted != times_.size() ||
        std::ranges::adjacent_find(times_, std::greater_equal<>()) != times_.end()) {
        throw std::runtime_error(workload.name + " is no traffic for this");
    }
}

std::size_t SoakCapture::framesWithin(Timest const& from, Timest const& to) const {
    auto const first = std::ranges::lower_bound(times_, from);
    auto const behind = std::ranges::upper_bound(times_, to);
    return first < behind ? static_cast<std::size_t>(behind - first) : 0;
}

std::optional<Timest> SoakCapture::lastBefore(Timest const& time) const {
    auto const notBefore = std::ranges::lower_bound(times_, time);
    return notBefore == times_.begin() ? std::nullopt : std::optional(*(notBefore - 1));
}

}  // namespace TalBench
