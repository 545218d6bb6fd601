#pragma once

// Internal: the copies of one frame that came so far.

#include <TalIec61850Analysis/redundancy/CopyKey.hpp>
#include <TalIec61850Analysis/redundancy/FrameContent.hpp>
#include <TalIec61850Analysis/redundancy/FrameCourse.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// A frame over one way.
struct FrameCopy {
    std::size_t way = 0;
    std::uint32_t tap = 0;
    std::uint32_t file = 0;
    /// As the capture says.
    std::int64_t time = 0;
    FrameContent content;
    std::vector<FramePacket> packets;
};

/// Copies of one source and sequence number that came within 400 ms of the first.
struct CopyGroup {
    /// Copies that are kept; of further ones only the number is.
    static constexpr std::size_t kMostKept = 16;

    CopyKey key;
    std::uint32_t source = 0;
    Redundancy redundancy = Redundancy::none;
    /// The number of the group, to be told from a later one of the same key.
    std::uint64_t number = 0;
    /// When the first came, by the clock of the captures of A.
    std::int64_t opened = 0;
    /// Whether the other way of the first copy was heard within the second before.
    bool isOtherHeard = false;
    /// Whether a frame that may be the copy over a way had a trailer that does not fit.
    std::array<bool, 2> hasMisfit{};
    std::uint64_t count = 0;
    std::vector<FrameCopy> copies;
    /// The packets of its streams before the first copy; as many as that has packets.
    std::vector<std::optional<PacketRef>> before;

    /// How many copies a way brought: at one tap, the one with most.
    [[nodiscard]] std::size_t countOver(std::size_t way) const;
};

}  // namespace TalIec61850Analysis::detail
