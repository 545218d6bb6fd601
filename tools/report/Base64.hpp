#pragma once

#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// Octets in letters, digits, + and /, four characters for three octets, = at the end.
[[nodiscard]] std::string toBase64(std::string_view octets);

}  // namespace TalIec61850Tools
