#include "tools/inspect/UtcTime.hpp"

namespace TalIec61850Tools {

std::uint32_t UtcTime::nanoseconds() const {
    constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
    return static_cast<std::uint32_t>(fraction * kNanosecondsPerSecond >> 24U);
}

std::optional<UtcTime> readUtcTime(OctetString const& octets) {
    if (octets.size() != kUtcTimeSize) {
        return std::nullopt;
    }
    auto const octet = [&](std::size_t index) { return std::uint32_t{octets[index]}; };
    return UtcTime{.seconds = octet(0) << 24U | octet(1) << 16U | octet(2) << 8U | octet(3),
                   .fraction = octet(4) << 16U | octet(5) << 8U | octet(6),
                   .quality = octets[7]};
}

}  // namespace TalIec61850Tools
