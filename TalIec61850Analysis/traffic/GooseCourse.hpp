#pragma once

// Internal: the messages of all GOOSE streams in the order in which they came.

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// A message of a stream.
struct CourseMessage {
    std::size_t stream = 0;
    PacketRef packet;
};

/// Goes over the messages of all streams at once, without copies and duplicates: in each file in
/// its order, so that it is read front to back; where files overlap, the one goes on whose next
/// message is earlier.
class GooseCourse {
public:
    /// @param index  must outlive the course
    explicit GooseCourse(TrafficIndex const& index)
        : GooseCourse(index, std::vector<bool>(index.streams().size(), true)) {}
    /// Goes over some streams alone.
    /// @param areWanted  by stream of the index
    GooseCourse(TrafficIndex const& index, std::vector<bool> const& areWanted);
    /// Goes over one stream alone, and looks at no other.
    /// @param stream  its number in the index; one of Sampled Values has no messages
    GooseCourse(TrafficIndex const& index, std::size_t stream);

    /// The next message; not set after the last.
    [[nodiscard]] std::optional<CourseMessage> next();

private:
    /// The messages of one stream in a file.
    struct Cursor {
        PacketColumns const* packets = nullptr;
        std::uint64_t offset = 0;
        std::size_t next = 0;
        std::size_t stream = 0;
        std::uint32_t part = 0;
    };
    /// One file: a heap of its streams, the earliest on top.
    struct File {
        std::vector<Cursor> cursors;
        /// Of the next message, or of the one before where that has none.
        std::int64_t time = kNoTime;
    };

    [[nodiscard]] static bool isLater(Cursor const& a, Cursor const& b) {
        return a.offset > b.offset;
    }
    void add(TrafficIndex const& index, std::size_t stream);
    /// To be called when all streams are added.
    void begin();
    /// Goes to the next message that is to be given.
    /// @return false after the last
    [[nodiscard]] static bool settle(Cursor& cursor);
    static void setTime(File& file);

    std::vector<File> files_;
};

}  // namespace TalIec61850Analysis::detail
