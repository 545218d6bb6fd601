#include "tools/render/SampleDelay.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>
#include <cstdlib>
#include <limits>

#include "tools/render/DurationText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleBlock;

void SampleDelay::add(SampleBlock const& block) {
    for (std::size_t row = 0; row < block.size(); ++row) {
        std::int64_t const arrival = block.arrivals[row];
        std::int64_t const time = block.sampleTimes[row];
        if (arrival == kNoTime || time == kNoTime) {
            continue;
        }
        auto const delay = static_cast<std::int64_t>(static_cast<std::uint64_t>(arrival) -
                                                     static_cast<std::uint64_t>(time));
        least_ = std::min(least_.value_or(delay), delay);
    }
}

void DelayNote::add(std::int64_t delay, std::string const& name) {
    std::int64_t const bounded = std::max(delay, -std::numeric_limits<std::int64_t>::max());
    if (std::abs(bounded) > std::abs(most_)) {
        most_ = bounded;
        name_ = name;
    }
}

std::string DelayNote::text() const {
    constexpr std::int64_t kMillisecond = 1'000'000;
    if (std::abs(most_) <= kMillisecond) {
        return {};
    }
    return fmt::format(
        "Samples are drawn when they were taken, {} {} they were captured ({}); states and "
        "findings "
        "when they were captured.",
        durationText(std::abs(most_)), most_ > 0 ? "before" : "after", name_);
}

}  // namespace TalIec61850Tools
