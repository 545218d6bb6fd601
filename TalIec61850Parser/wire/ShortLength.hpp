#pragma once

// Internal: lengths as the decoders of single packets read them.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Parser::wire {

/// A length as the decoders of single packets read it: short form, or long form with one or two
/// length octets, and nothing else.
struct ShortLength {
    std::size_t length = 0;
    /// Length octets, the first one included.
    std::size_t size = 0;
};

/// @return nullopt when the octets at `index` are no such length or end inside it
[[nodiscard]] std::optional<ShortLength> readShortLength(Octets data, std::size_t index);

/// Length octets after a first one: 0 for the short form, 1 or 2; nullopt for every other form.
[[nodiscard]] std::optional<std::size_t> furtherLengthOctets(std::uint8_t first);

}  // namespace TalIec61850Parser::wire
