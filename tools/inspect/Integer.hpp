#pragma once

#include <cstdint>
#include <variant>

#include "tools/inspect/OctetString.hpp"

namespace TalIec61850Tools {

/// A BER INTEGER, two's complement, of any width: what 64 bits with a sign hold, else what 64 bits
/// without one hold, else the octets. Never cut.
using Integer = std::variant<std::int64_t, std::uint64_t, OctetString>;

/// Reads the value octets of an INTEGER; octets that say nothing are allowed in front. No octets at
/// all give no octets.
[[nodiscard]] Integer readInteger(OctetString const& octets);

[[nodiscard]] bool isNegative(Integer const& integer);

/// Reads octets as a number without a sign, as Sampled Values have them: the octets themselves
/// where there are none, or the number takes more than 64 bits.
[[nodiscard]] Readable<std::uint64_t> readUnsigned(OctetString const& octets);

}  // namespace TalIec61850Tools
