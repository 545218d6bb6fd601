#pragma once

#include <TalIec61850Scl/model/StationDescription.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/output/Cell.hpp"

namespace TalIec61850Tools {

// Cells of rows that are made of a station's description.

/// The description that a place is in.
[[nodiscard]] Cell sclFileCell(TalIec61850Scl::StationDescription const& station,
                               TalIec61850Scl::SclPlace const& place);

/// Its line, where it is known.
[[nodiscard]] Cell sclLineCell(TalIec61850Scl::SclPlace const& place);

/// Both: station.scd:123
[[nodiscard]] Cell sclPlaceCell(TalIec61850Scl::StationDescription const& station,
                                TalIec61850Scl::SclPlace const& place);

/// A text that descriptions may leave out: absent where it is empty.
/// @param text  must outlive the cell
[[nodiscard]] Cell textIfAny(std::string const& text);

/// A length of time in milliseconds, as descriptions have it.
[[nodiscard]] Cell describedTimeCell(std::optional<std::int64_t> nanoseconds);

}  // namespace TalIec61850Tools
