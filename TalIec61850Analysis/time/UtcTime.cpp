#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>

namespace TalIec61850Analysis {

std::uint32_t UtcTime::nanoseconds() const noexcept {
    constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
    return static_cast<std::uint32_t>(fraction * kNanosecondsPerSecond >> 24U);
}

std::optional<UtcTime> readUtcTime(std::span<std::uint8_t const> octets) noexcept {
    if (octets.size() != kUtcTimeSize) {
        return std::nullopt;
    }
    // Four octets of seconds, three of the fraction, one of quality.
    using TalIec61850Parser::wire::readBigEndian;
    auto const fractionAndQuality = readBigEndian<std::uint32_t>(octets.subspan(4));
    return UtcTime{.seconds = readBigEndian<std::uint32_t>(octets),
                   .fraction = fractionAndQuality >> 8U,
                   .quality = octets.back()};
}

}  // namespace TalIec61850Analysis
