#include <TalIec61850Analysis/samples/PacketCourse.hpp>

namespace TalIec61850Analysis::detail {

PacketCourse::PacketCourse(TrafficStream const& stream) {
    for (StreamPart const& part : stream.parts) {
        parts_.push_back({.flags = part.packets.flags().data(),
                          .times = part.packets.times().data(),
                          .next = 0,
                          .size = part.packets.size(),
                          .time = kNoTime});
        if (stream.parts.size() > 1) {
            settle(parts_.back());
        }
    }
}

void PacketCourse::settle(Cursor& cursor) {
    while (cursor.next < cursor.size && !isFirst(cursor.flags[cursor.next])) {
        ++cursor.next;
    }
    if (cursor.next < cursor.size && cursor.times[cursor.next] != kNoTime) {
        cursor.time = cursor.times[cursor.next];
    }
}

std::optional<PacketRef> PacketCourse::nextOfSeveral() {
    Cursor* earliest = nullptr;
    for (Cursor& cursor : parts_) {
        if (cursor.next < cursor.size && (earliest == nullptr || cursor.time < earliest->time)) {
            earliest = &cursor;
        }
    }
    if (earliest == nullptr) {
        return std::nullopt;
    }
    PacketRef const ref{.part = static_cast<std::uint32_t>(earliest - parts_.data()),
                        .packet = static_cast<std::uint32_t>(earliest->next)};
    ++earliest->next;
    settle(*earliest);
    return ref;
}

}  // namespace TalIec61850Analysis::detail
