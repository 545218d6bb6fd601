#include <TalIec61850Analysis/packet/BitString.hpp>

namespace TalIec61850Analysis {

std::optional<BitStringView> readBitString(Octets octets) noexcept {
    if (octets.empty() || octets.front() > 7 || (octets.front() > 0 && octets.size() == 1)) {
        return std::nullopt;
    }
    return BitStringView{.octets = octets.subspan(1), .unusedBits = octets.front()};
}

}  // namespace TalIec61850Analysis
