#include "tools/plot/PixelSpans.hpp"

#include <algorithm>
#include <cmath>

namespace TalIec61850Tools {

PixelSpans::PixelSpans(double left, double right)
    : left_(left), isIn_(static_cast<std::size_t>(std::max(0.0, std::ceil(right - left)))) {}

void PixelSpans::add(double from, double to) {
    auto const size = static_cast<double>(isIn_.size());
    if (!(to >= from) || to < left_ || from > left_ + size || isIn_.empty()) {
        return;
    }
    double const first = std::clamp(std::floor(from - left_), 0.0, size - 1);
    double const end = std::clamp(std::ceil(to - left_), first + 1, size);
    std::fill(isIn_.begin() + static_cast<std::ptrdiff_t>(first),
              isIn_.begin() + static_cast<std::ptrdiff_t>(end), true);
}

std::vector<PixelSpans::Span> PixelSpans::spans() const {
    std::vector<Span> spans;
    for (std::size_t i = 0; i < isIn_.size(); ++i) {
        if (!isIn_[i]) {
            continue;
        }
        if (!spans.empty() && spans.back().to == i) {
            ++spans.back().to;
        } else {
            spans.push_back({.from = i, .to = i + 1});
        }
    }
    return spans;
}

}  // namespace TalIec61850Tools
