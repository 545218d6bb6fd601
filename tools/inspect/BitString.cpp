#include "tools/inspect/BitString.hpp"

namespace TalIec61850Tools {

std::optional<BitString> readBitString(OctetString const& octets) {
    if (octets.empty() || octets.front() > 7 || (octets.front() > 0 && octets.size() == 1)) {
        return std::nullopt;
    }
    return BitString{.octets = {octets.begin() + 1, octets.end()}, .unusedBits = octets.front()};
}

}  // namespace TalIec61850Tools
