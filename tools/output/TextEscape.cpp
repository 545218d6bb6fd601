#include "tools/output/TextEscape.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>

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

std::string_view firstCharacter(std::string_view text) {
    std::size_t end = 1;
    while (end < text.size() && isContinuation(text[end])) {
        ++end;
    }
    return text.substr(0, end);
}

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80U; }

/// The number of a character that is valid UTF-8.
char32_t codePoint(std::string_view character) {
    auto const first = static_cast<unsigned char>(character.front());
    if (character.size() == 1) {
        return first;
    }
    char32_t code = first & (0x7FU >> character.size());
    for (char const c : character.substr(1)) {
        code = (code << 6U) | (static_cast<unsigned char>(c) & 0x3FU);
    }
    return code;
}

/// Two for a character that terminals show wide, none for one that they show on the one before.
std::size_t columnsOf(std::string_view character) {
    struct Range {
        char32_t first;
        char32_t last;
    };
    constexpr std::array<Range, 6> combining = {{{0x0300, 0x036F},
                                                 {0x1AB0, 0x1AFF},
                                                 {0x1DC0, 0x1DFF},
                                                 {0x20D0, 0x20FF},
                                                 {0xFE00, 0xFE0F},
                                                 {0xFE20, 0xFE2F}}};
    constexpr std::array<Range, 11> wide = {{{0x1100, 0x115F},
                                             {0x2E80, 0x303E},
                                             {0x3041, 0xA4CF},
                                             {0xA960, 0xA97F},
                                             {0xAC00, 0xD7A3},
                                             {0xF900, 0xFAFF},
                                             {0xFE30, 0xFE6F},
                                             {0xFF00, 0xFF60},
                                             {0xFFE0, 0xFFE6},
                                             {0x1F300, 0x1FAFF},
                                             {0x20000, 0x3FFFD}}};
    char32_t const code = codePoint(character);
    auto const isIn = [code](Range const& range) {
        return code >= range.first && code <= range.last;
    };
    if (std::any_of(combining.begin(), combining.end(), isIn)) {
        return 0;
    }
    return std::any_of(wide.begin(), wide.end(), isIn) ? 2 : 1;
}

/// The characters at the start that take no more than so many columns.
std::string_view firstColumns(std::string_view text, std::size_t columns) {
    std::size_t end = 0;
    while (end < text.size()) {
        auto const character = firstCharacter(text.substr(end));
        if (columnsOf(character) > columns) {
            break;
        }
        columns -= columnsOf(character);
        end += character.size();
    }
    return text.substr(0, end);
}

/// The characters at the end that take no more than so many columns.
std::string_view lastColumns(std::string_view text, std::size_t columns) {
    std::size_t begin = text.size();
    while (begin > 0) {
        auto const character = lastCharacter(text.substr(0, begin));
        if (columnsOf(character) > columns) {
            break;
        }
        columns -= columnsOf(character);
        begin -= character.size();
    }
    return text.substr(begin);
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
    if (std::all_of(escaped.begin(), escaped.end(), isAscii)) {
        return escaped.size();
    }
    std::size_t columns = 0;
    while (!escaped.empty()) {
        auto const character = firstCharacter(escaped);
        columns += columnsOf(character);
        escaped.remove_prefix(character.size());
    }
    return columns;
}

std::string shorten(std::string_view escaped, std::size_t maxColumns, Cut cut,
                    std::string_view ellipsis) {
    if (countColumns(escaped) <= maxColumns) {
        return std::string(escaped);
    }
    std::size_t const dots = countColumns(ellipsis);
    std::string_view const mark = 2 * dots > maxColumns ? std::string_view() : ellipsis;
    std::size_t const room = maxColumns - countColumns(mark);
    std::size_t const atEnd = cut == Cut::start ? room : (cut == Cut::middle ? room / 2 : 0);
    std::string text(firstColumns(escaped, room - atEnd));
    return text.append(mark).append(lastColumns(escaped, atEnd));
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
