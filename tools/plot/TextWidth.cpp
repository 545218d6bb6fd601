#include "tools/plot/TextWidth.hpp"

#include <cstddef>

namespace TalIec61850Tools {

namespace {

/// Of the size of the font.
double partOf(std::string_view character) {
    if (character.size() > 1) {
        return countColumns(character) > 1 ? 1.0 : 0.65;
    }
    char const letter = character[0];
    auto const isOneOf = [letter](std::string_view letters) {
        return letters.find(letter) != std::string_view::npos;
    };
    if (isOneOf("ijl'|")) {
        return 0.24;
    }
    if (isOneOf(" ftI.,:;/\\![]")) {
        return 0.29;
    }
    if (isOneOf("r()-{}`\"")) {
        return 0.36;
    }
    if (isOneOf("ckszJvxy*^")) {
        return 0.51;
    }
    if (isOneOf("mMW%@")) {
        return 0.92;
    }
    if (letter == 'w' || (letter >= 'A' && letter <= 'Z')) {
        return 0.72;
    }
    return 0.57;
}

std::string_view firstCharacterOf(std::string_view text) {
    std::size_t end = 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        ++end;
    }
    return text.substr(0, end);
}

std::string_view lastCharacterOf(std::string_view text) {
    std::size_t start = text.size() - 1;
    while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80U) {
        --start;
    }
    return text.substr(start);
}

}  // namespace

double textWidth(std::string_view escaped, double size) {
    double width = 0;
    while (!escaped.empty()) {
        std::string_view const character = firstCharacterOf(escaped);
        width += partOf(character) * size;
        escaped.remove_prefix(character.size());
    }
    return width;
}

std::string fitText(std::string_view escaped, double size, double width, Cut cut) {
    if (textWidth(escaped, size) <= width) {
        return std::string(escaped);
    }
    constexpr std::string_view kLeftOut = "...";
    double room = width - textWidth(kLeftOut, size);
    std::size_t begin = 0;
    double const roomOfStart = cut == Cut::start ? 0 : (cut == Cut::middle ? room / 2 : room);
    double used = 0;
    while (begin < escaped.size()) {
        std::string_view const character = firstCharacterOf(escaped.substr(begin));
        double const wide = partOf(character) * size;
        if (used + wide > roomOfStart) {
            break;
        }
        used += wide;
        begin += character.size();
    }
    room = cut == Cut::end ? 0 : room - used;
    std::size_t end = escaped.size();
    while (end > begin) {
        std::string_view const character = lastCharacterOf(escaped.substr(begin, end - begin));
        room -= partOf(character) * size;
        if (room < 0) {
            break;
        }
        end -= character.size();
    }
    return std::string(escaped.substr(0, begin)).append(kLeftOut).append(escaped.substr(end));
}

}  // namespace TalIec61850Tools
