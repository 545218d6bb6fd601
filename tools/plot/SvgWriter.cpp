#include "tools/plot/SvgWriter.hpp"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace TalIec61850Tools {

namespace {

/// What a character is that begins a text.
struct Character {
    /// Octets that it takes.
    std::size_t size = 1;
    char32_t code = 0;
    bool isXml = false;
};

/// What XML 1.0 can have.
constexpr bool isXmlCode(char32_t code) {
    return code == 0x9 || code == 0xA || code == 0xD || (code >= 0x20 && code <= 0xD7FF) ||
           (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

/// @param text  at least one octet; not always UTF-8
Character firstOf(std::string_view text) {
    auto const first = static_cast<unsigned char>(text[0]);
    if (first < 0x80U) {
        return {.size = 1, .code = first, .isXml = isXmlCode(first)};
    }
    std::size_t const size = first >= 0xF0U ? 4 : (first >= 0xE0U ? 3 : 2);
    bool const isStart = first >= 0xC2U && first <= 0xF4U;
    if (!isStart || text.size() < size) {
        return {};
    }
    char32_t code = first & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        auto const octet = static_cast<unsigned char>(text[i]);
        if ((octet & 0xC0U) != 0x80U) {
            return {};
        }
        code = (code << 6U) | (octet & 0x3FU);
    }
    // A character in more octets than it takes is none.
    constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
    bool const isShortest = code >= kLeast[size];
    return isShortest ? Character{.size = size, .code = code, .isXml = isXmlCode(code)}
                      : Character{};
}

void appendXml(std::string& xml, std::string_view text) {
    while (!text.empty()) {
        Character const character = firstOf(text);
        if (!character.isXml) {
            xml += "\xEF\xBF\xBD";
        } else if (character.code == '&') {
            xml += "&amp;";
        } else if (character.code == '<') {
            xml += "&lt;";
        } else if (character.code == '>') {
            xml += "&gt;";
        } else if (character.code == '"') {
            xml += "&quot;";
        } else if (character.code < 0x20) {
            xml += ' ';
        } else {
            xml += text.substr(0, character.size);
        }
        text.remove_prefix(character.size);
    }
}

constexpr std::string_view nameOf(Anchor anchor) {
    return anchor == Anchor::middle ? "middle" : (anchor == Anchor::end ? "end" : "start");
}

}  // namespace

std::string svgNumber(double value) {
    if (!std::isfinite(value)) {
        return "0";
    }
    std::string text = fmt::format("{:.2f}", value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

SvgWriter::SvgWriter(double width, double height, Palette const& palette) : palette_(palette) {
    text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                 {"version", "1.1"},
                 {"width", width},
                 {"height", height},
                 {"viewBox", "0 0 " + svgNumber(width) + " " + svgNumber(height)},
                 {"font-family", "'Liberation Sans', Arial, Helvetica, sans-serif"}});
}

void SvgWriter::begin(std::string_view element, SvgAttributes attributes) {
    text_ += '<';
    text_ += element;
    for (SvgAttribute const& attribute : attributes) {
        text_ += ' ';
        text_ += attribute.name;
        text_ += "=\"";
        appendXml(text_, attribute.value);
        text_ += '"';
    }
}

void SvgWriter::open(std::string_view element, SvgAttributes attributes) {
    begin(element, attributes);
    text_ += ">\n";
    open_.emplace_back(element);
}

void SvgWriter::close() {
    text_ += "</" + open_.back() + ">\n";
    open_.pop_back();
}

void SvgWriter::add(std::string_view element, SvgAttributes attributes) {
    begin(element, attributes);
    text_ += "/>\n";
}

void SvgWriter::addWords(std::string_view element, std::string_view text) {
    begin(element, {});
    text_ += '>';
    appendXml(text_, text);
    text_ += fmt::format("</{}>\n", element);
}

void SvgWriter::addText(double x, double y, std::string_view text, TextLook const& look) {
    begin("text", {{"x", x},
                   {"y", y},
                   {"font-size", look.size},
                   {"fill", palette_[look.ink].hex},
                   {"text-anchor", nameOf(look.anchor)},
                   {"font-weight", look.isBold ? "bold" : "normal"}});
    text_ += '>';
    appendXml(text_, text);
    text_ += "</text>\n";
}

void SvgWriter::addBox(double x, double y, double width, double height, Ink ink,
                       std::string_view kind) {
    InkColour const& colour = palette_[ink];
    add("rect", {{"class", kind},
                 {"x", x},
                 {"y", y},
                 {"width", width},
                 {"height", height},
                 {"fill", colour.hex},
                 {"fill-opacity", colour.opacity}});
}

void SvgWriter::addLine(double x1, double y1, double x2, double y2, Ink ink,
                        std::string_view kind) {
    add("line", {{"class", kind},
                 {"x1", x1},
                 {"y1", y1},
                 {"x2", x2},
                 {"y2", y2},
                 {"stroke", palette_[ink].hex}});
}

std::string SvgWriter::take() {
    while (!open_.empty()) {
        close();
    }
    return std::move(text_);
}

}  // namespace TalIec61850Tools
