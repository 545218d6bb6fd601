#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser {

/// One BER element as `Asn1Parser::parseTag` reads it.
struct Asn1Tag {
    /// The identifier octet as it is read: class, constructed bit and tag number together.
    std::uint8_t tag = 0;
    /// Octets in the value.
    std::uint32_t length = 0;
    /// A copy of the value octets.
    std::vector<std::uint8_t> value;
    /// Octets in the whole element; less `length`, the size of its header.
    std::size_t totalLength = 0;
};

}  // namespace TalIec61850Parser
