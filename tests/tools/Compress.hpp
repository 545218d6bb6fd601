#pragma once

#include <string>

#include "support/Bytes.hpp"

namespace TalTest {

/// Octets as a program that compresses files writes them.
/// @param filter  gzip, zstd, xz, lz4 or bzip2
[[nodiscard]] Bytes compressed(Bytes const& octets, std::string const& filter);

}  // namespace TalTest
