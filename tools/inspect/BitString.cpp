#include "tools/inspect/BitString.hpp"

#include <array>

namespace TalIec61850Tools {

std::optional<BitString> readBitString(OctetString const& octets) {
    if (octets.empty() || octets.front() > 7 || (octets.front() > 0 && octets.size() == 1)) {
        return std::nullopt;
    }
    return BitString{.octets = {octets.begin() + 1, octets.end()}, .unusedBits = octets.front()};
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
    if (bits.size() != 2) {
        return {};
    }
    return kPositions[(bits[0] ? 2U : 0U) + (bits[1] ? 1U : 0U)];
}

}  // namespace TalIec61850Tools
