#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/options/CommonOptions.hpp"
#include "tools/options/WindowOptions.hpp"
#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// What `events` is asked for.
struct EventsOptions {
    CommonOptions common;
    PacketCriteria criteria;
    WindowOptions window;
    /// Patterns of places in data sets, or of names; empty for all.
    std::vector<std::string> members;
    std::optional<std::chrono::nanoseconds> nextWithin;
    std::optional<std::uint64_t> limit;
    /// A picture in place of rows.
    bool isTimeline = false;
};

}  // namespace TalIec61850Tools
