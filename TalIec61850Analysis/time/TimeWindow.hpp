#pragma once

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <optional>

namespace TalIec61850Analysis {

/// A window of time.
struct TimeWindow {
    /// The first instant in the window; not set for a window without a start.
    std::optional<CaptureTime> from;
    /// The last instant in the window; not set for a window without an end.
    std::optional<CaptureTime> to;

    /// Whether an instant is in the window. None is where the window ends before it starts.
    [[nodiscard]] bool contains(CaptureTime time) const noexcept {
        return (!from || *from <= time) && (!to || time <= *to);
    }

    /// Whether both have the same ends.
    friend bool operator==(TimeWindow const&, TimeWindow const&) = default;
};

}  // namespace TalIec61850Analysis
