#pragma once

#include <cstddef>
#include <vector>

namespace TalIec61850Tools {

/// Spans of a row of pixels, joined where they meet: however many are added, there are no more
/// than half as many as there are pixels.
class PixelSpans {
public:
    /// First pixels, and first pixels after.
    struct Span {
        std::size_t from = 0;
        std::size_t to = 0;

        friend bool operator==(Span const&, Span const&) = default;
    };

    /// @param left, right  of the row, in pixels
    PixelSpans(double left, double right);

    /// Adds all pixels that a span touches: one at least.
    /// @param from, to  in pixels of the picture; what is outside of the row counts for nothing
    void add(double from, double to);

    /// In their order, counted from the left of the row.
    [[nodiscard]] std::vector<Span> spans() const;

private:
    double left_;
    std::vector<bool> isIn_;
};

}  // namespace TalIec61850Tools
