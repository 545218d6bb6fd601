#pragma once

#include <cstdint>
#include <variant>
#include <vector>

namespace TalIec61850Tools {

/// Octets of a frame, copied out of it.
using OctetString = std::vector<std::uint8_t>;

/// A value that was read as what it should be, or else its octets.
template <typename Value>
using Readable = std::variant<Value, OctetString>;

}  // namespace TalIec61850Tools
