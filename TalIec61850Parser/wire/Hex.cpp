#include <TalIec61850Parser/wire/Hex.hpp>

namespace TalIec61850Parser::wire {

std::string toHex(Octets octets) {
    std::string text;
    text.reserve(2 * octets.size());
    for (std::uint8_t const octet : octets) {
        appendHex(text, octet, kLowerHexDigits);
    }
    return text;
}

std::string toColonHex(Octets octets) {
    std::string text;
    text.reserve(3 * octets.size());
    for (std::uint8_t const octet : octets) {
        if (!text.empty()) {
            text += ':';
        }
        appendHex(text, octet, kLowerHexDigits);
    }
    return text;
}

}  // namespace TalIec61850Parser::wire
