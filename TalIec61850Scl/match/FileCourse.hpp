#pragma once

// Internal: the packets that a file has of some streams, in its order.

#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Scl::detail {

/// A packet of one of the streams.
struct FilePacket {
    /// The number of its columns.
    std::size_t columns = 0;
    /// Its number in these.
    std::uint32_t packet = 0;
    /// Where its frame is in the file.
    std::uint64_t frameOffset = 0;
    /// SV: the number of its ASDU in the frame.
    std::uint16_t asdu = 0;
};

/// Goes over packets, without copies and duplicates, in the order of their frames, and in a frame
/// in the order of its ASDUs. So a file is read front to back, and a frame once.
class FileCourse {
public:
    /// @param columns  all of one file; must outlive the course
    explicit FileCourse(std::vector<TalIec61850Analysis::PacketColumns const*> const& columns);

    /// The next packet; not set after the last.
    [[nodiscard]] std::optional<FilePacket> next();

    /// Gives no more packets of these columns but one at most.
    void leave(std::size_t columns) { isLeft_[columns] = true; }

private:
    struct Cursor {
        TalIec61850Analysis::PacketColumns const* packets = nullptr;
        FilePacket place;
    };

    [[nodiscard]] static bool isLater(Cursor const& a, Cursor const& b);
    [[nodiscard]] bool settle(Cursor& cursor) const;

    /// A heap, the earliest on top.
    std::vector<Cursor> cursors_;
    /// By columns.
    std::vector<bool> isLeft_;
};

}  // namespace TalIec61850Scl::detail
