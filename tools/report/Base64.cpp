#include "tools/report/Base64.hpp"

#include <algorithm>
#include <cstdint>

namespace TalIec61850Tools {

std::string toBase64(std::string_view octets) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::uint32_t kDigitBits = 0x3F;
    std::string text;
    text.reserve((octets.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < octets.size(); i += 3) {
        std::uint32_t group = 0;
        std::size_t const count = std::min<std::size_t>(3, octets.size() - i);
        for (std::size_t j = 0; j < 3; ++j) {
            group = group << 8U | (j < count ? static_cast<std::uint8_t>(octets[i + j]) : 0U);
        }
        for (unsigned digit = 0; digit < 4; ++digit) {
            text += digit <= count ? kDigits[group >> (18U - 6U * digit) & kDigitBits] : '=';
        }
    }
    return text;
}

}  // namespace TalIec61850Tools
