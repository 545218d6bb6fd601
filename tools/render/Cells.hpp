#pragma once

#include <fmt/format.h>

#include <optional>
#include <string>

#include "tools/output/TableLines.hpp"
#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/StreamIdentity.hpp"

// The text of table cells for the values that rows are made of; see kAbsentCell.

namespace TalIec61850Tools {

/// A name from outside, escaped; "" in quotes for an empty one.
[[nodiscard]] std::string nameCell(std::optional<std::string> const& name);

/// Four hexadecimal digits, such as 0x4000.
[[nodiscard]] std::string appIdCell(StreamIdentity const& identity);

/// The VLAN identifier.
[[nodiscard]] std::string vlanCell(StreamIdentity const& identity);

/// A or B.
[[nodiscard]] std::string hsrCell(StreamIdentity const& identity);

/// The name that a stream is known by: svID or gocbRef.
[[nodiscard]] std::string streamNameCell(StreamIdentity const& identity);

/// UTC.
[[nodiscard]] std::string timeCell(std::optional<CaptureTime> const& time);

template <typename Number>
[[nodiscard]] std::string numberCell(std::optional<Number> const& number) {
    return number ? fmt::to_string(*number) : std::string(kAbsentCell);
}

}  // namespace TalIec61850Tools
