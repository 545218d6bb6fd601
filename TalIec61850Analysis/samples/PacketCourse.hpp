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
        if (parts_.size() == 1) [[likely]] {
            Cursor& cursor = parts_.front();
            while (cursor.next < cursor.size) {
                std::size_t const packet = cursor.next++;
                if (isFirst(cursor.flags[packet])) {
                    return PacketRef{.part = 0, .packet = static_cast<std::uint32_t>(packet)};
                }
            }
            return std::nullopt;
        }
        return nextOfSeveral();
    }

private:
    struct Cursor {
        PacketFlags const* flags = nullptr;
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
    [[nodiscard]] std::optional<PacketRef> nextOfSeveral();
    /// The part whose packet is next, and until when its packets are; null after the last.
    [[nodiscard]] Cursor* nextPart(std::int64_t& until);
    [[nodiscard]] std::size_t endOfAttributes(Cursor& cursor) const;

    TrafficStream const* stream_;
    /// By the number of the part.
    std::vector<Cursor> parts_;
};

}  // namespace TalIec61850Analysis::detail
