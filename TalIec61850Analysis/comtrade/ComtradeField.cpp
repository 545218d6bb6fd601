#include <TalIec61850Analysis/comtrade/ComtradeField.hpp>
#include <array>
#include <charconv>
#include <system_error>

namespace TalIec61850Analysis::detail {

namespace {

/// A character that units have, in UTF-8, and what it is in ASCII.
struct SpelledCharacter {
    std::string_view character;
    std::string_view letters;
};

constexpr std::array kSpelledCharacters{SpelledCharacter{"\xC2\xB5", "u"},  // micro sign
                                        SpelledCharacter{"\xCE\xBC", "u"},  // the Greek letter
                                        SpelledCharacter{"\xC2\xB0", "deg"},
                                        SpelledCharacter{"\xC2\xB2", "2"},
                                        SpelledCharacter{"\xC2\xB3", "3"}};

/// Of the character that a text begins with; null where it has none.
SpelledCharacter const* spelledAt(std::string_view text) {
    for (SpelledCharacter const& each : kSpelledCharacters) {
        if (text.starts_with(each.character)) {
            return &each;
        }
    }
    return nullptr;
}

}  // namespace

std::string comtradeField(std::string_view text, std::size_t limit) {
    std::string field;
    bool isInCharacter = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (SpelledCharacter const* const spelled = spelledAt(text.substr(at))) {
            if (field.size() + spelled->letters.size() > limit) {
                break;
            }
            field += spelled->letters;
            at += spelled->character.size() - 1;
            isInCharacter = false;
            continue;
        }
        char const letter = text[at];
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
