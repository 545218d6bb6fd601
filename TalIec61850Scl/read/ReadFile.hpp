#pragma once

// Internal: one file of a description.

#include <TalIec61850Scl/read/FileContent.hpp>
#include <TalIec61850Scl/read/FileOctets.hpp>
#include <cstdint>

namespace TalIec61850Scl::detail {

/// Reads one file by itself.
/// @param octets  of the file
/// @param file    its number among those that are read
/// @throws std::bad_alloc  where memory ends
[[nodiscard]] FileContent readFile(FileOctets octets, std::uint32_t file);

}  // namespace TalIec61850Scl::detail
