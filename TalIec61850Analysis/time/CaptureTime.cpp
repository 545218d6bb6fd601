#include <TalIec61850Analysis/time/CaptureTime.hpp>

namespace TalIec61850Analysis {

CaptureTime makeCaptureTime(std::uint32_t seconds, std::uint32_t nanoseconds) noexcept {
    // Both together stay below 2^62 nanoseconds.
    return CaptureTime(std::chrono::seconds(seconds) + std::chrono::nanoseconds(nanoseconds));
}

std::uint64_t nanosecondsSince1970(CaptureTime time) noexcept {
    return static_cast<std::uint64_t>(time.time_since_epoch().count());
}

}  // namespace TalIec61850Analysis
