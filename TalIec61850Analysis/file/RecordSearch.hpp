#pragma once

// Internal: which record holds an offset, told by the octets around it.

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// How far a search goes.
struct SearchLimits {
    /// Octets before the offset, in which a header may be.
    std::size_t window = std::size_t{256} << 10U;
    /// Headers that must follow one another, unless the file ends.
    std::size_t chain = 16;
    /// Headers that must do so before damage.
    std::size_t beforeDamage = 4;
    /// Headers looked at outside what was read at once.
    std::size_t reads = 4096;
};

/// A file and a place in it.
struct SearchPlace {
    Descriptor const& file;
    std::uint64_t fileSize = 0;
    /// Where the first record or block may be.
    std::uint64_t start = 0;
    std::uint64_t fileOffset = 0;
    bool isLittleEndian = false;
};

/// Looks for the header of the record of a classic capture that holds an offset. A header is one by
/// the chain of headers after it.
///
/// A record that begins in the window, and after which no damage comes before `beforeDamage`
/// headers, always has such a chain. So what is found is that record, or nothing.
/// @return its offset; none where octets of a frame have a chain too, or none has
/// @throws std::system_error  the file cannot be read
[[nodiscard]] std::optional<std::uint64_t> searchClassic(SearchPlace const& place,
                                                         SearchLimits const& limits = {});

/// The same for the block with a packet in a next-generation capture, in a section of known byte
/// order.
[[nodiscard]] std::optional<std::uint64_t> searchNextGeneration(SearchPlace const& place,
                                                                SearchLimits const& limits = {});

}  // namespace TalIec61850Analysis::detail
