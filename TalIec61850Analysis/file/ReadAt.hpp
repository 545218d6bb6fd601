#pragma once

// Internal: how files are opened and read, as one may that is no regular file.

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <TalIec61850Parser/wire/ReadAhead.hpp>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace TalIec61850Analysis::detail {

/// Opens a file for reading. A pipe is opened too, without waiting for a writer.
/// @throws std::system_error  it cannot be opened
[[nodiscard]] Descriptor openToRead(std::string const& path);

/// Reads what the file holds at an offset, up to the end of the file.
/// @return how many of the octets were read; fewer than there are only at the end of the file
/// @throws std::system_error  the file cannot be read
[[nodiscard]] std::size_t readAt(Descriptor const& file, std::uint64_t fileOffset,
                                 std::span<std::uint8_t> octets);

/// Reads a file in sequence. Its own position does not move, so that others may read it at the same
/// time.
/// @param file        outlives what is returned
/// @param fileOffset  where to begin
/// @param end         where to end, if the file does not end before
[[nodiscard]] TalIec61850Parser::wire::ReadOctets readFrom(Descriptor const& file,
                                                           std::uint64_t fileOffset,
                                                           std::uint64_t end);

}  // namespace TalIec61850Analysis::detail
