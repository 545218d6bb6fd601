#include <TalIec61850Analysis/redundancy/CopyGroup.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

std::size_t CopyGroup::countOver(std::size_t way) const {
    std::size_t most = 0;
    for (FrameCopy const& copy : copies) {
        auto const isLike = [&](FrameCopy const& other) {
            return other.way == way && other.tap == copy.tap;
        };
        most = std::max(
            most, static_cast<std::size_t>(std::count_if(copies.begin(), copies.end(), isLike)));
    }
    return most;
}

}  // namespace TalIec61850Analysis::detail
