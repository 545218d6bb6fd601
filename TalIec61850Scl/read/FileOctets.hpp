#pragma once

// Internal: the octets of a file.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace TalIec61850Scl::detail {

/// Octets that may be changed.
struct FileOctets {
    std::unique_ptr<char[]> octets;
    std::size_t size = 0;

    [[nodiscard]] std::string_view view() const noexcept { return {octets.get(), size}; }
};

/// A copy of octets in memory.
[[nodiscard]] FileOctets copyOctets(std::string_view octets);

/// All octets of a file.
/// @throws std::system_error  where it cannot be read
[[nodiscard]] FileOctets loadFile(std::string const& path);

}  // namespace TalIec61850Scl::detail
