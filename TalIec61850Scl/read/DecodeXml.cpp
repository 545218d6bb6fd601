#include <TalIec61850Scl/read/DecodeXml.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Scl::detail {

namespace {

constexpr std::uint32_t kReplacementCharacter = 0xFFFD;

void appendUtf8(std::string& text, std::uint32_t character) {
    auto const put = [&](std::uint32_t octet) { text.push_back(static_cast<char>(octet)); };
    if (character < 0x80U) {
        put(character);
    } else if (character < 0x800U) {
        put(0xC0U | (character >> 6U));
        put(0x80U | (character & 0x3FU));
    } else if (character < 0x10000U) {
        put(0xE0U | (character >> 12U));
        put(0x80U | ((character >> 6U) & 0x3FU));
        put(0x80U | (character & 0x3FU));
    } else {
        put(0xF0U | (character >> 18U));
        put(0x80U | ((character >> 12U) & 0x3FU));
        put(0x80U | ((character >> 6U) & 0x3FU));
        put(0x80U | (character & 0x3FU));
    }
}

/// A number of some octets, in either order.
std::uint32_t unitAt(std::string_view octets, std::size_t at, std::size_t size, bool bigEndian) {
    std::uint32_t unit = 0;
    for (std::size_t i = 0; i < size; ++i) {
        std::size_t const next = bigEndian ? at + i : at + size - 1 - i;
        unit = (unit << 8U) | static_cast<unsigned char>(octets[next]);
    }
    return unit;
}

bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800U && unit < 0xDC00U; }
bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00U && unit < 0xE000U; }

std::string fromUtf16(std::string_view octets, bool bigEndian) {
    std::string text;
    text.reserve(octets.size() / 2);
    for (std::size_t at = 0; at + 2 <= octets.size(); at += 2) {
        std::uint32_t unit = unitAt(octets, at, 2, bigEndian);
        if (isHighSurrogate(unit) && at + 4 <= octets.size() &&
            isLowSurrogate(unitAt(octets, at + 2, 2, bigEndian))) {
            at += 2;
            unit =
                0x10000U + ((unit - 0xD800U) << 10U) + (unitAt(octets, at, 2, bigEndian) - 0xDC00U);
        } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            unit = kReplacementCharacter;
        }
        appendUtf8(text, unit);
    }
    return text;
}

std::string fromUtf32(std::string_view octets, bool bigEndian) {
    std::string text;
    text.reserve(octets.size() / 4);
    for (std::size_t at = 0; at + 4 <= octets.size(); at += 4) {
        std::uint32_t const unit = unitAt(octets, at, 4, bigEndian);
        bool const isCharacter =
            unit < 0x110000U && !isHighSurrogate(unit) && !isLowSurrogate(unit);
        appendUtf8(text, isCharacter ? unit : kReplacementCharacter);
    }
    return text;
}

std::string fromLatin1(std::string_view octets) {
    std::string text;
    text.reserve(octets.size() + octets.size() / 8);
    for (char const octet : octets) {
        appendUtf8(text, static_cast<unsigned char>(octet));
    }
    return text;
}

/// Whether the declaration names ISO 8859-1, or an encoding that adds characters to it.
bool isDeclaredLatin1(std::string_view octets) {
    constexpr std::size_t kLongestDeclaration = 256;
    std::string_view const start = octets.substr(0, kLongestDeclaration);
    if (!start.starts_with("<?xml")) {
        return false;
    }
    std::string declaration(start.substr(0, start.find("?>")));
    std::transform(declaration.begin(), declaration.end(), declaration.begin(), [](char each) {
        return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
    });
    std::size_t const encoding = declaration.find("encoding");
    if (encoding == std::string::npos) {
        return false;
    }
    std::string_view const named = std::string_view(declaration).substr(encoding);
    return named.find("iso-8859-1\"") != std::string_view::npos ||
           named.find("iso-8859-1'") != std::string_view::npos ||
           named.find("latin1") != std::string_view::npos ||
           named.find("windows-1252") != std::string_view::npos;
}

}  // namespace

std::optional<std::string> decodeXml(std::string_view octets) {
    using namespace std::string_view_literals;
    if (octets.starts_with("\xFF\xFE\0\0"sv) || octets.starts_with("<\0\0\0"sv)) {
        return fromUtf32(octets, false);
    }
    if (octets.starts_with("\0\0\xFE\xFF"sv) || octets.starts_with("\0\0\0<"sv)) {
        return fromUtf32(octets, true);
    }
    if (octets.starts_with("\xFF\xFE"sv) || octets.starts_with("<\0"sv)) {
        return fromUtf16(octets, false);
    }
    if (octets.starts_with("\xFE\xFF"sv) || octets.starts_with("\0<"sv)) {
        return fromUtf16(octets, true);
    }
    if (isDeclaredLatin1(octets)) {
        return fromLatin1(octets);
    }
    return std::nullopt;
}

}  // namespace TalIec61850Scl::detail
