#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// "1 file", "2 files".
/// @param noun  in the singular
[[nodiscard]] inline std::string plural(std::uint64_t count, std::string_view noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

}  // namespace TalIec61850Tools
