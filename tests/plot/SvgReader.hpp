#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace TalTest {

/// A point of a picture, in pixels.
struct Point {
    double x = 0;
    double y = 0;
};

/// The parts of a path that are joined, point by point; a level or upright step is a point too.
[[nodiscard]] std::vector<std::vector<Point>> pointsOf(std::string_view pathData);

/// From quantities to pixels, by two of them.
class PixelScale {
public:
    PixelScale(double first, double firstPixel, double second, double secondPixel)
        : first_(first),
          firstPixel_(firstPixel),
          perUnit_((secondPixel - firstPixel) / (second - first)) {}
    [[nodiscard]] double at(double value) const {
        return firstPixel_ + (value - first_) * perUnit_;
    }

private:
    double first_;
    double firstPixel_;
    double perUnit_;
};

/// A box of a picture.
struct Box {
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;
};

/// A picture, read back.
class SvgReader {
public:
    /// Expects well-formed XML that an SVG 1.1 viewer shows without a request.
    explicit SvgReader(std::string text);

    [[nodiscard]] std::string const& text() const { return text_; }
    [[nodiscard]] pugi::xml_node root() const { return document_.child("svg"); }
    /// Elements of a class, in their order.
    [[nodiscard]] std::vector<pugi::xml_node> ofClass(std::string_view kind) const;
    /// Rectangles of a class.
    [[nodiscard]] std::vector<Box> boxes(std::string_view kind) const;
    /// All texts that are drawn, in their order.
    [[nodiscard]] std::vector<std::string> texts() const;
    /// Whether one of them has this in it.
    [[nodiscard]] bool shows(std::string_view part) const;
    /// The element of a text that is drawn; null without one.
    [[nodiscard]] pugi::xml_node textNode(std::string_view text) const;
    /// Where seconds of a minute are from left to right, by what is written at the ticks.
    [[nodiscard]] PixelScale seconds() const;
    /// Where values are from top to bottom, by two labels.
    [[nodiscard]] PixelScale values(std::string const& low, std::string const& high) const;
    /// Paths of a class.
    [[nodiscard]] std::vector<std::vector<std::vector<Point>>> paths(std::string_view kind) const;

private:
    std::string text_;
    pugi::xml_document document_;
};

}  // namespace TalTest
