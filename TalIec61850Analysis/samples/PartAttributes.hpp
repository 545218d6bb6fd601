#pragma once

// Internal: the attributes of packets, for walks that mostly go forward in each part.

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Finds the attributes of packets that are asked for about in the order of each part: late samples
/// are asked for before packets that came before them.
class PartAttributes {
public:
    /// Both must outlive this.
    PartAttributes(TrafficIndex const& index, TrafficStream const& stream)
        : index_(&index), stream_(&stream), next_(stream.parts.size()) {}

    /// Whether the attributes of a packet may be others than those of the one asked for before.
    [[nodiscard]] bool isChangedAt(PacketRef ref) const {
        auto const& changes = stream_->parts[ref.part].changes;
        std::size_t const next = next_[ref.part];
        return ref.part != part_ ||
               (next < changes.size() && changes[next].firstPacket <= ref.packet) ||
               (next > 0 && changes[next - 1].firstPacket > ref.packet);
    }

    /// Those of a packet.
    [[nodiscard]] StreamAttributes const& at(PacketRef ref) {
        StreamPart const& part = stream_->parts[ref.part];
        std::size_t& next = next_[ref.part];
        while (next < part.changes.size() && part.changes[next].firstPacket <= ref.packet) {
            ++next;
        }
        while (next > 1 && part.changes[next - 1].firstPacket > ref.packet) {
            --next;
        }
        part_ = ref.part;
        return index_->attributes(part, part.changes[next - 1]);
    }

private:
    TrafficIndex const* index_;
    TrafficStream const* stream_;
    /// By part: the first change that is ahead.
    std::vector<std::size_t> next_;
    std::size_t part_ = static_cast<std::size_t>(-1);
};

}  // namespace TalIec61850Analysis::detail
