#include "tools/render/AddressText.hpp"

#include <string_view>

namespace TalIec61850Tools {

namespace {

/// Appends the two digits of an octet.
void appendHex(std::string& text, unsigned octet, std::string_view digits) {
    text += digits[octet >> 4U & 0xFU];
    text += digits[octet & 0xFU];
}

}  // namespace

std::string toText(MacAddress const& address) {
    std::string text;
    for (std::uint8_t const octet : address) {
        text += text.empty() ? "" : ":";
        appendHex(text, octet, "0123456789abcdef");
    }
    return text;
}

std::string appIdText(std::uint16_t appId) {
    std::string text = "0x";
    appendHex(text, appId >> 8U, "0123456789ABCDEF");
    appendHex(text, appId, "0123456789ABCDEF");
    return text;
}

}  // namespace TalIec61850Tools
