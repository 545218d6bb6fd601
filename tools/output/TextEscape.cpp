#include "tools/output/TextEscape.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace TalIec61850Tools {

namespace {

bool isContinuation(char octet) { return (static_cast<unsigned char>(octet) & 0xC0U) == 0x80U; }

std::size_t widestColumns(std::string_view character) { return character.size() == 1 ? 1 : 2; }

/// The last character of a text that is not empty.
std::string_view lastCharacter(std::string_view text) {
    std::size_t start = text.size() - 1;
    while (start > 0 && isContinuation(text[start])) {
        --start;
    }
    return text.substr(start);
}

/// True only for characters that need no escape; false is inconclusive.
bool isPlain(char character) { return character >= ' ' && character < 0x7F && character != '\\'; }

}  // namespace

std::string escapeText(std::string_view text) {
    // Nearly every name is plain. This saves most of the time that long lists take.
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        return std::string(text);
    }
    std::string escaped;
    for (;;) {
        // The debug format puts the text between quotes and escapes those within: not wanted here.
        std::size_t const quote = text.find('"');
        std::string const part = fmt::format("{:?}", text.substr(0, quote));
        escaped.append(part, 1, part.size() - 2);
        if (quote == std::string_view::npos) {
            return escaped;
        }
        escaped += '"';
        text.remove_prefix(quote + 1);
    }
}

std::size_t countColumns(std::string_view escaped) {
    return static_cast<std::size_t>(
        std::count_if(escaped.begin(), escaped.end(), [](char c) { return !isContinuation(c); }));
}

std::string keepEnd(std::string_view escaped, std::size_t maxColumns) {
    constexpr std::string_view kLeftOut = "...";
    std::size_t columns = 0;
    std::size_t kept = escaped.size();           // start of the part that fits
    std::size_t keptAfterDots = escaped.size();  // the same, with room for the dots
    while (kept > 0) {
        auto const character = lastCharacter(escaped.substr(0, kept));
        columns += widestColumns(character);
        if (columns > maxColumns) {
            return std::string(kLeftOut.substr(0, maxColumns))
                .append(escaped.substr(keptAfterDots));
        }
        kept -= character.size();
        if (columns + kLeftOut.size() <= maxColumns) {
            keptAfterDots = kept;
        }
    }
    return std::string(escaped);
}

}  // namespace TalIec61850Tools
