#include "tools/inspect/BinaryTime.hpp"

namespace TalIec61850Tools {

std::optional<BinaryTime> readBinaryTime(OctetString const& octets) {
    if (octets.size() != 4 && octets.size() != 6) {
        return std::nullopt;
    }
    BinaryTime time;
    for (std::size_t i = 0; i < 4; ++i) {
        time.milliseconds = time.milliseconds << 8U | octets[i];
    }
    if (octets.size() == 6) {
        time.days = static_cast<std::uint16_t>(octets[4] << 8U | octets[5]);
    }
    return time;
}

}  // namespace TalIec61850Tools
