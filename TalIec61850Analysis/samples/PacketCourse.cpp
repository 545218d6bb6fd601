#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

PacketCourse::PacketCourse(TrafficStream const& stream) : stream_(&stream) {
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

PacketCourse::Cursor* PacketCourse::nextPart(std::int64_t& until) {
    until = std::numeric_limits<std::int64_t>::max();
    Cursor* earliest = nullptr;
    for (Cursor& cursor : parts_) {
        if (cursor.next == cursor.size) {
            continue;
        }
        if (earliest == nullptr || cursor.time < earliest->time) {
            until = earliest == nullptr ? until : std::min(until, earliest->time);
            earliest = &cursor;
        } else {
            until = std::min(until, cursor.time);
        }
    }
    return earliest;
}

std::size_t PacketCourse::endOfAttributes(Cursor& cursor) const {
    auto const& changes = stream_->parts[static_cast<std::size_t>(&cursor - parts_.data())].changes;
    while (cursor.change < changes.size() && changes[cursor.change].firstPacket <= cursor.next) {
        ++cursor.change;
    }
    return cursor.change < changes.size() ? changes[cursor.change].firstPacket : cursor.size;
}

PacketCourse::Strip PacketCourse::nextStrip(std::uint64_t most) {
    // Neither copy nor duplicate, and both counters in their columns.
    constexpr auto kUnusual = static_cast<std::uint16_t>(
        PacketFlags::kCopy | PacketFlags::kDuplicate | 3U << PacketFlags::kFirstCounterShift |
        3U << PacketFlags::kSecondCounterShift);
    constexpr std::int64_t kSoon = 50'000'000;
    std::int64_t until = 0;
    Cursor* const cursor = nextPart(until);
    if (cursor == nullptr) {
        return {};
    }
    if (parts_.size() == 1) {
        settle(*cursor);
        if (cursor->next == cursor->size) {
            return {};
        }
    }
    auto const part = static_cast<std::size_t>(cursor - parts_.data());
    PacketColumns const& packets = stream_->parts[part].packets;
    std::size_t const first = cursor->next;
    std::size_t last = first;
    if ((cursor->flags[first].bits & kUnusual) == 0 && cursor->times[first] != kNoTime) {
        std::uint32_t const* const smpCnts = packets.smpCnts().data();
        std::uint8_t const* const synchs = packets.smpSynchs().data();
        std::size_t const end = std::min<std::uint64_t>(
            endOfAttributes(*cursor), first + std::min<std::uint64_t>(most, cursor->size));
        auto const goesOn = [&](std::size_t packet) {
            std::int64_t const time = cursor->times[packet];
            std::int64_t const since = time - cursor->times[packet - 1];
            return smpCnts[packet] == smpCnts[packet - 1] + 1 && since >= 0 && since < kSoon &&
                   (cursor->flags[packet].bits & kUnusual) == 0 &&
                   synchs[packet] == synchs[first] && time < until;
        };
        while (last + 1 < end && goesOn(last + 1)) {
            ++last;
        }
    }
    cursor->next = last + 1;
    if (parts_.size() > 1) {
        settle(*cursor);
    }
    return {.first = {.part = static_cast<std::uint32_t>(part),
                      .packet = static_cast<std::uint32_t>(first)},
            .count = static_cast<std::uint32_t>(last + 1 - first)};
}

std::optional<PacketRef> PacketCourse::nextOfSeveral() {
    std::int64_t until = 0;
    Cursor* const earliest = nextPart(until);
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
