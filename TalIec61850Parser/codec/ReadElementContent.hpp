#pragma once

// Internal: reads back the element of an indexed packet from its capture file.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Parser::detail {

/// The content of the element at an offset of a file. The file is opened, sought in and read once,
/// and of it no more than the element and the stream's own buffer.
/// @param fileOffset  of the identifier octet
/// @param tag         the identifier octet that must be there
/// @return nullopt when the file cannot be read, another octet is there, the length is no
///         `ShortLength`, or the file ends before the content does
[[nodiscard]] std::optional<std::vector<std::uint8_t>> readElementContent(
    std::string const& fileName, std::uint64_t fileOffset, std::uint8_t tag);

}  // namespace TalIec61850Parser::detail
