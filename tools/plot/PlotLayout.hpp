#pragma once

#include <memory>
#include <vector>

#include "tools/plot/PlotRow.hpp"

namespace TalIec61850Tools {

/// Rows one below the other.
class PlotLayout {
public:
    void add(std::unique_ptr<PlotRow> row);
    /// Leaves room before the next row.
    void space(double height) { space_ += height; }

    /// Of all, in pixels.
    [[nodiscard]] double height() const;
    /// Gives elastic rows equal room, so that all are so high together.
    /// @param least  that each of them has, even where all are higher then
    void stretchTo(double height, double least);
    void draw(SvgWriter& svg) const;

private:
    struct Placed {
        std::unique_ptr<PlotRow> row;
        /// Room before it.
        double space = 0;
    };

    std::vector<Placed> rows_;
    double space_ = 0;
};

}  // namespace TalIec61850Tools
