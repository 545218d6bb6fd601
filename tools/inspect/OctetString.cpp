#include "tools/inspect/OctetString.hpp"

#include <string_view>

namespace TalIec61850Tools {

std::string toHex(OctetString const& octets) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * octets.size());
    for (std::uint8_t const octet : octets) {
        text += kDigits[octet >> 4U];
        text += kDigits[octet & 0x0FU];
    }
    return text;
}

}  // namespace TalIec61850Tools
