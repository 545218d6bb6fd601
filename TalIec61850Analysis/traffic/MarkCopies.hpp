#pragma once

// Internal: which packets came again: over the other LAN or lane, or in another file.

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Marks the packets of a stream that the other LAN or lane brought before: the same sequence
/// number within 400 ms. A packet is taken as the origin of one copy on each other way.
class CopyMarker {
public:
    /// @param parts  their duplicates are marked already; marks of copies are set anew
    void mark(std::span<StreamPart> parts);

private:
    /// The packet that a sequence number was met at last.
    struct Met {
        std::int64_t time = 0;
        /// Which stream it is of.
        std::uint32_t stream = 0;
        bool isB = false;
        bool isPaired = false;
    };

    static constexpr std::size_t kSequences = std::size_t{1} << 16U;
    static constexpr std::size_t kChunk = 512;

    /// @param number  below 2 * kSequences
    [[nodiscard]] Met& metAt(std::size_t number);

    /// Whether the other way brought a frame before; it is what further ones are compared with.
    /// @param packet  the first one of the frame; frames come in the order of their times
    [[nodiscard]] bool isCopy(PacketColumns const& packets, std::size_t packet);

    /// By protocol of redundancy and sequence number; a chunk is empty until it is needed, so that
    /// captures of few frames take little.
    std::array<std::vector<Met>, 2 * kSequences / kChunk> met_;
    std::uint32_t stream_ = 0;
};

/// Marks the packets that an earlier file has at the same time, octet for octet.
/// @throws std::system_error  a file cannot be read
void markDuplicates(std::span<IndexedFile const> files, std::span<TrafficStream> streams);

}  // namespace TalIec61850Analysis::detail
