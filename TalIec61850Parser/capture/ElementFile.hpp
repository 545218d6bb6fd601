#pragma once

// Internal: reads back the element of an indexed packet from its capture file.

#include <TalIec61850Parser/codec/BerReader.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Parser::detail {

/// A length as the decoders of single packets read it: short form, or long form with one or two
/// length octets, and nothing else.
struct ShortLength {
    std::size_t length = 0;
    /// Length octets, the first one included.
    std::size_t size = 0;
};

/// @return nullopt when the octets at `position` are no such length or end inside it
[[nodiscard]] std::optional<ShortLength> readShortLength(Octets data, std::size_t position);

/// The content of the element at a position of a file. The file is opened, sought in and read once,
/// and of it no more than the element and the stream's own buffer.
/// @param position  offset in the file, in octets, of the identifier octet
/// @param tag       the identifier octet that must stand there
/// @return nullopt when the file cannot be read, another octet stands there, the length is no
///         `ShortLength`, or the file ends before the content does
[[nodiscard]] std::optional<std::vector<std::uint8_t>> readElementContent(
    std::string const& fileName, std::uint64_t position, std::uint8_t tag);

}  // namespace TalIec61850Parser::detail
