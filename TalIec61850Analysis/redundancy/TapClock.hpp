#pragma once

// Internal: by what clock a capture has its times, and what it can see.

#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// One file among those of an index.
struct TapClock {
    /// How far its clock is ahead of that of the others, in nanoseconds.
    std::int64_t offset = 0;
    /// Its place among all files, whatever order they were given in.
    std::uint32_t rank = 0;
    /// Files one after the other are of one tap. Two taps that have one way each are one.
    std::uint32_t tap = 0;
    /// The way that its tap has, where another tap has the other one.
    std::optional<std::size_t> way;
};

}  // namespace TalIec61850Analysis::detail
