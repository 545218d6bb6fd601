#pragma once

// Internal: which record holds an offset, told by the octets before it.

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis::detail {

/// How far a search goes.
struct SearchLimits {
    /// Octets before the offset that are looked at.
    std::size_t window = std::size_t{256} << 10U;
    /// Headers in a row that must lead to a header.
    std::uint8_t before = 16;
};

/// A file and a place in it.
struct SearchPlace {
    Descriptor const& file;
    std::uint64_t fileSize = 0;
    /// Where the first record or block is.
    std::uint64_t start = 0;
    std::uint64_t fileOffset = 0;
    bool isLittleEndian = false;
    /// Of a classic capture.
    bool isNanosecond = false;
};

/// Looks for the header of the record of a classic capture that holds an offset. Octets are taken
/// for a header where a row of headers leads to them, each with usual numbers: fractions below a
/// second, not more octets captured than there were, and not more than 256 KiB of these.
///
/// Where that record, and those before it in the row, have such numbers, it is found, or nothing.
/// @return its offset; none where no row leads to it, or rows lead to several, as in a frame that
///         carries a capture
/// @throws std::system_error  the file cannot be read
[[nodiscard]] std::optional<std::uint64_t> searchClassic(SearchPlace const& place,
                                                         SearchLimits const& limits = {});

/// The same for the block with a packet in a next-generation capture, in a section of known byte
/// order. Octets are taken for a block where they have its length at both ends.
[[nodiscard]] std::optional<std::uint64_t> searchNextGeneration(SearchPlace const& place,
                                                                SearchLimits const& limits = {});

}  // namespace TalIec61850Analysis::detail
