#pragma once

#include <optional>
#include <string>

#include "tools/output/Cell.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/StreamIdentity.hpp"

// The values of table cells, and how columns of them give way to others.

namespace TalIec61850Tools {

/// Four hexadecimal digits, such as 0x4000.
[[nodiscard]] Cell appIdCell(StreamIdentity const& identity);

/// The VLAN identifier.
[[nodiscard]] Cell vlanCell(StreamIdentity const& identity);

/// A or B.
[[nodiscard]] Cell hsrCell(StreamIdentity const& identity);

/// The name that a stream is known by: svID or gocbRef.
[[nodiscard]] Cell streamNameCell(StreamIdentity const& identity);

/// UTC.
[[nodiscard]] Cell timeCell(std::optional<CaptureTime> const& time);

/// Of a column of times: the date and milliseconds stay.
[[nodiscard]] constexpr Fit fitTime(std::size_t rank) {
    return {.rank = rank, .least = 24, .cut = Cut::end};
}

/// Of a column of names: the begin and the end stay.
[[nodiscard]] constexpr Fit fitName(std::size_t rank, std::size_t least) {
    return {.rank = rank, .least = least, .cut = Cut::middle};
}

/// Of a column of files: the end stays.
[[nodiscard]] constexpr Fit fitFile(std::size_t rank) {
    return {.rank = rank, .least = 14, .cut = Cut::start};
}

}  // namespace TalIec61850Tools
