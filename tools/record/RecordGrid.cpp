#include "tools/record/RecordGrid.hpp"

#include <cmath>

namespace TalIec61850Tools {

namespace {

constexpr long double kSecond = 1e9L;

long double rowsTo(RecordGrid const& grid, std::int64_t time) {
    auto const since = static_cast<long double>(time) - static_cast<long double>(grid.start);
    return since * grid.rate.samples / (kSecond * grid.rate.seconds);
}

}  // namespace

std::int64_t RecordGrid::nearest(std::int64_t time) const {
    return static_cast<std::int64_t>(std::llround(rowsTo(*this, time)));
}

double RecordGrid::awayFrom(std::int64_t time) const {
    long double const rows = rowsTo(*this, time);
    return static_cast<double>(std::abs(rows - std::round(rows)));
}

}  // namespace TalIec61850Tools
