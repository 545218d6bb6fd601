#pragma once

// Internal: what all copies of a frame should have in common.

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// The octets of a frame but for the way that it took, as a hash: those of an HSR tag or a PRP
/// trailer, wherever it is, and padding are left out. The size in an HSR tag counts.
class FrameContent {
public:
    /// Of a frame that was not read: it is compared with none.
    FrameContent() = default;
    FrameContent(RecordView const& view, Redundancy redundancy);

    /// Whether the octets are the same.
    [[nodiscard]] bool isSameAs(FrameContent const& other) const;
    /// Whether the octets are others. Not so where that cannot be told: of one the end may be cut
    /// off, or its addresses are not those of Ethernet.
    [[nodiscard]] bool differsFrom(FrameContent const& other) const;

private:
    std::uint64_t hash_ = 0;
    /// Octets that were captured, where more were on the wire; else 0.
    std::uint32_t cutSize_ = 0;
    bool isCooked_ = false;
    bool isKnown_ = false;

    [[nodiscard]] bool isComparedWith(FrameContent const& other) const;
};

}  // namespace TalIec61850Analysis::detail
