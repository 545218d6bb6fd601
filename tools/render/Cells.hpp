#pragma once

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "tools/output/Cell.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/StreamCriteria.hpp"

// The value of a table cell, and how columns of them give way to others.

namespace TalIec61850Tools {

/// The protocol's name: GOOSE or SV.
[[nodiscard]] std::string_view toText(Protocol protocol);

/// 01:0c:cd:01:00:01
[[nodiscard]] Cell addressCell(std::optional<MacAddress> const& address);

/// 0x4000
[[nodiscard]] Cell appIdCell(std::optional<std::uint16_t> appId);

/// Date and time, UTC.
[[nodiscard]] Cell timeCell(std::optional<CaptureTime> const& time);

/// Nanoseconds since 1970.
[[nodiscard]] Cell timeNsCell(std::optional<CaptureTime> const& time);

/// A number; octets that are too many for one, in hexadecimal.
[[nodiscard]] Cell numberCell(TalIec61850Analysis::ReadableView<std::uint64_t> const& number);
[[nodiscard]] Cell numberCell(TalIec61850Analysis::Readable<std::uint64_t> const& number);

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
