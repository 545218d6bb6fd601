#include <TalIec61850Analysis/comtrade/ComtradeField.hpp>
#include <array>
#include <charconv>
#include <system_error>

namespace TalIec61850Analysis::detail {

std::string comtradeField(std::string_view text, std::size_t limit) {
    std::string field;
    bool isInCharacter = false;
    for (char const letter : text) {
        auto const octet = static_cast<unsigned char>(letter);
        // In UTF-8, the octets of a character after its first one.
        bool const isContinued = isInCharacter && (octet & 0xC0U) == 0x80U;
        isInCharacter = octet >= 0x80U;
        if (isContinued) {
            continue;
        }
        bool const isKept = octet >= 0x20U && octet < 0x7FU && letter != ',';
        if (field.empty() && letter == ' ') {
            continue;
        }
        if (field.size() == limit) {
            break;
        }
        field += isKept ? letter : '_';
    }
    field.erase(field.find_last_not_of(' ') + 1);
    return field;
}

std::string comtradeField(double number) {
    std::array<char, 24> digits{};
    char* const end = digits.data() + digits.size();
    auto result = std::to_chars(digits.data(), end, number, std::chars_format::fixed);
    if (result.ec != std::errc()) {
        result = std::to_chars(digits.data(), end, number);
    }
    return {digits.data(), result.ptr};
}

}  // namespace TalIec61850Analysis::detail
