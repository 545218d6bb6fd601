#pragma once

#include <cstdint>
#include <string>

namespace TalIec61850Tools {

/// A length of time in the unit that fits, with six digits at most: "250 ns", "2.25 ms",
/// "1.00025 s".
/// @param nanoseconds  the sign is kept
[[nodiscard]] std::string durationText(std::int64_t nanoseconds);

/// The length of time between two instants, whichever is the later one.
[[nodiscard]] std::string durationText(std::int64_t from, std::int64_t until);

}  // namespace TalIec61850Tools
