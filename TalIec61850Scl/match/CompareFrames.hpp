#pragma once

// Internal: what only the frames of streams say, compared with their description.

#include <TalIec61850Scl/match/DescribedStream.hpp>
#include <TalIec61850Scl/match/DifferenceSet.hpp>
#include <cstdint>
#include <vector>

namespace TalIec61850Scl::detail {

/// What a file has of a stream.
struct ComparedPart {
    /// Outlives this.
    DescribedStream const* described = nullptr;
    /// The number of the part among those of the stream.
    std::uint32_t part = 0;
    /// What was found.
    DifferenceSet differences = {};
};

/// Whether anything is described that only frames show.
[[nodiscard]] bool needsFrames(DescribedStream const& described);

/// Reads the frames of streams again: the priority of each; of GOOSE number and types of the
/// values, wherever they are others than in the message before; of SV the size and the optional
/// fields of each ASDU. Copies and duplicates are left out. The file is read once, front to back,
/// up to the last frame that is needed.
/// @param file   the number of the file in the index
/// @param parts  all of this file, of one index; what is found is added to each
/// @throws std::system_error  the file cannot be read, or no longer has the frames (ESTALE)
void compareFrames(std::uint32_t file, std::vector<ComparedPart>& parts);

}  // namespace TalIec61850Scl::detail
