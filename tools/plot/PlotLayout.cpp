#include "tools/plot/PlotLayout.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace TalIec61850Tools {

void PlotLayout::add(std::unique_ptr<PlotRow> row) {
    rows_.push_back({.row = std::move(row), .space = std::exchange(space_, 0)});
}

double PlotLayout::height() const {
    double height = space_;
    for (Placed const& placed : rows_) {
        height += placed.space + placed.row->height();
    }
    return height;
}

void PlotLayout::stretchTo(double height, double least) {
    std::size_t elastic = 0;
    for (Placed const& placed : rows_) {
        if (placed.row->isElastic()) {
            placed.row->stretch(least);
            ++elastic;
        }
    }
    if (elastic == 0) {
        return;
    }
    double const more = std::max(0.0, height - this->height()) / static_cast<double>(elastic);
    for (Placed const& placed : rows_) {
        if (placed.row->isElastic()) {
            placed.row->stretch(least + std::floor(more));
        }
    }
}

void PlotLayout::draw(SvgWriter& svg) const {
    double top = 0;
    for (Placed const& placed : rows_) {
        top += placed.space;
        placed.row->draw(svg, top);
        top += placed.row->height();
    }
}

}  // namespace TalIec61850Tools
