#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "tools/plot/Palette.hpp"

namespace TalIec61850Tools {

/// A number of pixels: two decimals at most, and 0 where it is not finite.
[[nodiscard]] std::string svgNumber(double value);

/// An attribute of an element.
struct SvgAttribute {
    SvgAttribute(std::string_view attribute, double number)
        : name(attribute), value(svgNumber(number)) {}
    SvgAttribute(std::string_view attribute, std::string_view text)
        : name(attribute), value(text) {}

    std::string_view name;
    std::string value;
};

/// Attributes in their order.
using SvgAttributes = std::initializer_list<SvgAttribute>;

/// Where a text begins, ends or has its middle.
enum class Anchor { start, middle, end };

/// How a text looks.
struct TextLook {
    double size = 12;
    Ink ink = Ink::text;
    Anchor anchor = Anchor::start;
    bool isBold = false;
};

/// Writes an SVG 1.1 picture that loads nothing. Whatever texts and values it is given, what it
/// writes is well-formed: what XML 1.0 cannot have becomes U+FFFD.
class SvgWriter {
public:
    /// @param width, height  in pixels
    SvgWriter(double width, double height, Palette const& palette);

    [[nodiscard]] Palette const& palette() const { return palette_; }

    /// Begins an element that has others in it.
    void open(std::string_view element, SvgAttributes attributes = {});
    /// Ends the element that was begun last.
    void close();
    /// An element that is empty.
    void add(std::string_view element, SvgAttributes attributes);
    /// An element that has a text in it and is not drawn: title, desc.
    void addWords(std::string_view element, std::string_view text);

    /// A text in one line.
    /// @param y  of its base line
    void addText(double x, double y, std::string_view text, TextLook const& look);
    /// A filled rectangle.
    /// @param kind  for those who restyle or test pictures
    void addBox(double x, double y, double width, double height, Ink ink, std::string_view kind);
    /// A line one pixel wide, upright or level.
    void addLine(double x1, double y1, double x2, double y2, Ink ink, std::string_view kind);

    /// Ends all elements.
    /// @return the picture; nothing may be written after that
    [[nodiscard]] std::string take();

private:
    void begin(std::string_view element, SvgAttributes attributes);

    Palette palette_;
    std::string text_;
    std::vector<std::string> open_;
};

}  // namespace TalIec61850Tools
