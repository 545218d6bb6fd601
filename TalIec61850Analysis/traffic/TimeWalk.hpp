#pragma once

// Internal: the packets of several files in the order of time.

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Walks over the packets of a stream that have a time, duplicates included; those of one time in
/// the order of the parts, then of the columns.
class TimeWalk {
public:
    /// @param parts  must outlive the walk
    TimeWalk(std::span<StreamPart const> parts, TimeWindow const& window);

    /// Nothing after the last.
    [[nodiscard]] std::optional<PacketRef> next();

private:
    /// Where the walk is in one part.
    struct Cursor {
        std::int64_t time = 0;
        std::uint32_t part = 0;
        std::size_t place = 0;
        std::size_t end = 0;
    };

    [[nodiscard]] static bool isLater(Cursor const& a, Cursor const& b) {
        return a.time != b.time ? a.time > b.time : a.part > b.part;
    }
    void load(Cursor& cursor) const;

    std::span<StreamPart const> parts_;
    /// A heap, the earliest on top.
    std::vector<Cursor> cursors_;
};

/// Shows what a TimeWalk gives; faster where there is one part alone.
/// @param visit  void visit(PacketRef const&)
template <typename Visit>
void visitInTime(std::span<StreamPart const> parts, TimeWindow const& window, Visit const& visit) {
    if (parts.size() == 1) {
        PacketColumns const& packets = parts.front().packets;
        auto const [first, last] = packets.placesIn(window);
        for (std::size_t place = first; place < last; ++place) {
            visit(PacketRef{.part = 0,
                            .packet = static_cast<std::uint32_t>(packets.inTimeOrder(place))});
        }
        return;
    }
    TimeWalk walk(parts, window);
    while (auto const ref = walk.next()) {
        visit(*ref);
    }
}

}  // namespace TalIec61850Analysis::detail
