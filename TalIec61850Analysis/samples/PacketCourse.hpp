#pragma once

// Internal: the packets of a stream as its publisher sent them, each once.

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Walks over the packets of a stream, without copies and duplicates: in each file in its order,
/// whatever the times say; where files overlap, the one goes on whose next packet is earlier. A
/// walk can be copied, and so be gone ahead of.
class PacketCourse {
public:
    /// @param stream  must outlive the walk
    explicit PacketCourse(TrafficStream const& stream);
    /// Walks over some parts alone.
    /// @param areWanted  by part
    PacketCourse(TrafficStream const& stream, std::vector<bool> const& areWanted);

    /// Packets one after the other in one part.
    struct Strip {
        PacketRef first;
        std::uint32_t count = 0;
    };

    /// The next packets of which each goes on where the one before is: smpCnt by one, within 67 ms,
    /// with the same smpSynch and the same attributes. All others come by themselves.
    /// @param most  not 0
    /// @return count is 0 after the last packet
    [[nodiscard]] Strip nextStrip(std::uint64_t most);

    /// The next packet; not set after the last.
    [[nodiscard]] std::optional<PacketRef> next() {
        PacketRef packet;
        return goOn(packet) ? std::optional(packet) : std::nullopt;
    }

    /// The next packet, for loops: an optional value is copied through memory, which takes longer
    /// than finding the packet.
    /// @param next  set to it; to anything where there is none
    /// @return whether there is one
    [[nodiscard]] bool goOn(PacketRef& next) {
        if (parts_.size() == 1) [[likely]] {
            Cursor& cursor = parts_.front();
            std::size_t packet = cursor.next;
            while (packet < cursor.size && !isFirst(cursor.flags[packet])) {
                ++packet;
            }
            bool const isLeft = packet < cursor.size;
            cursor.next = packet + (isLeft ? 1U : 0U);
            next.part = 0;
            next.packet = static_cast<std::uint32_t>(packet);
            return isLeft;
        }
        return goOnInSeveral(next);
    }

private:
    struct Cursor {
        ColumnView<PacketFlags> flags;
        std::int64_t const* times = nullptr;
        std::size_t next = 0;
        std::size_t size = 0;
        /// Of the next packet, or of the one before where that has none.
        std::int64_t time = kNoTime;
        /// The first change of attributes after the next packet, once that was looked for.
        std::size_t change = 0;
    };

    [[nodiscard]] static bool isFirst(PacketFlags flags) {
        return !flags.isCopy() && !flags.isDuplicate();
    }
    /// Goes to the next packet that is to be given.
    static void settle(Cursor& cursor);
    [[nodiscard]] bool goOnInSeveral(PacketRef& next);
    /// The part whose packet is next, and until when its packets are; null after the last.
    [[nodiscard]] Cursor* nextPart(std::int64_t& until);
    [[nodiscard]] std::size_t endOfAttributes(Cursor& cursor) const;

    TrafficStream const* stream_;
    /// By the number of the part.
    std::vector<Cursor> parts_;
};

}  // namespace TalIec61850Analysis::detail
