#pragma once

// Internal: units and their multipliers, as descriptions have them.

#include <string>
#include <string_view>

namespace TalIec61850Scl::detail {

/// A unit with its multiplier: "kV". Empty where there is no unit.
/// @param siUnit      its text, or its ordinal of IEC 61850-7-3
/// @param multiplier  likewise; one that is none is left out
[[nodiscard]] std::string unitText(std::string_view siUnit, std::string_view multiplier);

}  // namespace TalIec61850Scl::detail
