#pragma once

// Internal: XML of any encoding as UTF-8.

#include <optional>
#include <string>
#include <string_view>

namespace TalIec61850Scl::detail {

/// The text as UTF-8, where it is in UTF-16, UTF-32 or ISO 8859-1: by its byte order mark, by how
/// its first character is coded, or by its declaration. Characters that are none become U+FFFD.
/// @return not set where the octets can be read as they are: UTF-8, and encodings that have the
///         characters of ASCII at their places
[[nodiscard]] std::optional<std::string> decodeXml(std::string_view octets);

}  // namespace TalIec61850Scl::detail
