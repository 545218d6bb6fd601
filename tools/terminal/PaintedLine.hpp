#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/output/Style.hpp"

namespace TalIec61850Tools {

/// A line of a picture, made piece by piece, in colours or without them.
class PaintedLine {
public:
    explicit PaintedLine(bool inColour) : inColour_(inColour) {}

    /// Appends a text.
    /// @param text  safe for a terminal
    void add(std::string_view text, Paint paint = Paint::plain);
    /// Appends a text so many times.
    void repeat(std::size_t times, std::string_view text, Paint paint = Paint::plain);
    /// Appends a text, and blanks after it or before it until both take so many columns. A wider
    /// text is cut in its middle.
    /// @param ellipsis  what is written there
    void addLeft(std::string_view text, std::size_t columns, std::string_view ellipsis,
                 Paint paint = Paint::plain);
    void addRight(std::string_view text, std::size_t columns, std::string_view ellipsis,
                  Paint paint = Paint::plain);

    /// The line with its end, without the blanks before that.
    [[nodiscard]] std::string take();

private:
    void paintPending();

    bool inColour_;
    std::string line_;
    /// What was added last, in one paint.
    std::string pending_;
    Paint paint_ = Paint::plain;
};

}  // namespace TalIec61850Tools
