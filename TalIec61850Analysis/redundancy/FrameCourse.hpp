#pragma once

// Internal: the frames of redundant sources in the order in which they came.

#include <TalIec61850Analysis/redundancy/RedundantSources.hpp>
#include <TalIec61850Analysis/redundancy/TapClock.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// A packet of a stream in a frame.
struct FramePacket {
    std::uint32_t stream = 0;
    PacketRef packet;
};

/// A frame, and whose packets it has.
struct CourseFrame {
    std::uint32_t file = 0;
    std::uint32_t source = 0;
    std::uint64_t frameOffset = 0;
    /// When it was captured, in nanoseconds since 1970.
    std::int64_t time = 0;
    std::uint16_t sequence = 0;
    PacketFlags flags;
    /// Of each of its streams the first one, in the order of the streams.
    std::vector<FramePacket> packets;
};

/// Goes over the frames that RedundantSources wants, of all sources at once: in each file in its
/// order, so that it is read front to back; where files overlap, the one goes on whose next frame
/// is earlier.
class FrameCourse {
public:
    /// Of all files.
    /// @param index, sources  must outlive the course
    /// @param clocks          by file
    FrameCourse(TrafficIndex const& index, RedundantSources const& sources,
                std::span<TapClock const> clocks);
    /// Of one file alone.
    FrameCourse(TrafficIndex const& index, RedundantSources const& sources, std::uint32_t file);

    /// The next frame; null after the last. Valid until the next call.
    [[nodiscard]] CourseFrame const* next();

private:
    /// The packets of one stream in a file.
    struct Cursor {
        PacketColumns const* packets = nullptr;
        std::uint64_t offset = 0;
        std::size_t next = 0;
        std::uint32_t stream = 0;
        std::uint32_t part = 0;
    };
    /// One file: a heap of its streams, the earliest in the file on top.
    struct File {
        std::vector<Cursor> cursors;
        std::int64_t time = 0;
        std::uint32_t number = 0;
        TapClock clock;
    };

    [[nodiscard]] static bool isLaterInFile(Cursor const& a, Cursor const& b) {
        return a.offset != b.offset ? a.offset > b.offset : a.stream > b.stream;
    }
    [[nodiscard]] static bool isLater(File const& a, File const& b) {
        return a.time != b.time ? a.time > b.time : a.clock.rank > b.clock.rank;
    }
    void begin(TrafficIndex const& index, std::optional<std::uint32_t> wanted);
    /// Goes to the next wanted packet.
    /// @return false after the last
    [[nodiscard]] static bool settle(Cursor& cursor);
    static void setTime(File& file);
    /// Goes on after the packet on top.
    static void advance(File& file);

    RedundantSources const* sources_;
    /// A heap, the earliest on top.
    std::vector<File> files_;
    CourseFrame frame_;
};

}  // namespace TalIec61850Analysis::detail
