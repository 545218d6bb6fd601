#include <TalIec61850Analysis/traffic/TimeWalk.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

TimeWalk::TimeWalk(std::span<StreamPart const> parts, TimeWindow const& window) : parts_(parts) {
    for (std::size_t part = 0; part < parts.size(); ++part) {
        auto const [first, last] = parts[part].packets.placesIn(window);
        if (first != last) {
            Cursor cursor{.part = static_cast<std::uint32_t>(part), .place = first, .end = last};
            load(cursor);
            cursors_.push_back(cursor);
        }
    }
    std::make_heap(cursors_.begin(), cursors_.end(), isLater);
}

std::optional<PacketRef> TimeWalk::next() {
    if (cursors_.empty()) {
        return std::nullopt;
    }
    if (cursors_.size() > 1) {
        std::pop_heap(cursors_.begin(), cursors_.end(), isLater);
    }
    Cursor& cursor = cursors_.back();
    PacketRef const ref{.part = cursor.part,
                        .packet = static_cast<std::uint32_t>(
                            parts_[cursor.part].packets.inTimeOrder(cursor.place))};
    if (++cursor.place == cursor.end) {
        cursors_.pop_back();
    } else {
        load(cursor);
        std::push_heap(cursors_.begin(), cursors_.end(), isLater);
    }
    return ref;
}

void TimeWalk::load(Cursor& cursor) const {
    PacketColumns const& packets = parts_[cursor.part].packets;
    cursor.time = packets.times()[packets.inTimeOrder(cursor.place)];
}

}  // namespace TalIec61850Analysis::detail
