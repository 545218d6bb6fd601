#pragma once

#include <cstddef>

#include "tools/output/Cell.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/selection/StreamIdentity.hpp"

// The value of a table cell, and how columns of them give way to others.

namespace TalIec61850Tools {

/// The name that a stream is known by: svID or gocbRef.
[[nodiscard]] Cell streamNameCell(StreamIdentity const& identity);

/// Of a column of times: the date and milliseconds stay.
[[nodiscard]] constexpr Fit fitTime(std::size_t rank) {
    return {.rank = rank, .least = 24, .cut = Cut::end};
}

/// Of a column of names: the start and the end stay.
[[nodiscard]] constexpr Fit fitName(std::size_t rank, std::size_t least) {
    return {.rank = rank, .least = least, .cut = Cut::middle};
}

/// Of a column of files: the end stays.
[[nodiscard]] constexpr Fit fitFile(std::size_t rank) {
    return {.rank = rank, .least = 14, .cut = Cut::start};
}

}  // namespace TalIec61850Tools
