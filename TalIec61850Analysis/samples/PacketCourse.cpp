#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

namespace {

/// Tells whether packets go on from the ones before them. What differs is collected without
/// branches: a compiler makes vectors of that.
class StripColumns {
public:
    /// How many packets are looked at at once.
    static constexpr std::size_t kBlock = 32;

    explicit StripColumns(PacketColumns const& packets)
        : times_(packets.times().data()),
          smpCnts_(packets.smpCnts().data()),
          synchs_(packets.smpSynchs()),
          flags_(packets.flags()) {}

    /// Whether a packet has a time and both counters in their columns, and is no copy.
    [[nodiscard]] bool isUsual(std::size_t packet) const {
        return (flags_[packet].bits & kUnusual) == 0 && times_[packet] != kNoTime;
    }

    /// Whether a packet goes on from the one before it.
    [[nodiscard]] bool goesOn(std::size_t packet) const { return goOn<1>(packet); }

    /// Whether a block of packets does, from this one on.
    [[nodiscard]] bool goOn(std::size_t packet) const { return goOn<kBlock>(packet); }

private:
    // Neither copy nor duplicate, and both counters in their columns.
    static constexpr auto kUnusual = static_cast<std::uint16_t>(
        PacketFlags::kCopy | PacketFlags::kDuplicate | 3U << PacketFlags::kFirstCounterShift |
        3U << PacketFlags::kSecondCounterShift);
    /// 2^26 ns: some 67 ms. A time before the other makes a large number as well.
    static constexpr unsigned kSoonBits = 26;

    template <std::size_t Count>
    [[nodiscard]] bool goOn(std::size_t packet) const {
        std::uint64_t late = 0;
        std::uint32_t other = 0;
        std::uint16_t unusual = 0;
        std::uint8_t synch = 0;
        for (std::size_t i = packet; i < packet + Count; ++i) {
            late |= (static_cast<std::uint64_t>(times_[i]) -
                     static_cast<std::uint64_t>(times_[i - 1])) >>
                    kSoonBits;
        }
        for (std::size_t i = packet; i < packet + Count; ++i) {
            other |= smpCnts_[i] ^ (smpCnts_[i - 1] + 1);
        }
        if (PacketFlags const* const flags = flags_.values()) {
            for (std::size_t i = packet; i < packet + Count; ++i) {
                unusual = static_cast<std::uint16_t>(unusual | (flags[i].bits & kUnusual));
            }
        } else {
            unusual = flags_[packet].bits & kUnusual;
        }
        if (std::uint8_t const* const synchs = synchs_.values()) {
            for (std::size_t i = packet; i < packet + Count; ++i) {
                synch = static_cast<std::uint8_t>(synch | (synchs[i] ^ synchs[i - 1]));
            }
        }
        return (late | other | unusual | synch) == 0;
    }

    std::int64_t const* times_;
    std::uint32_t const* smpCnts_;
    ColumnView<std::uint8_t> synchs_;
    ColumnView<PacketFlags> flags_;
};

}  // namespace

PacketCourse::PacketCourse(TrafficStream const& stream)
    : PacketCourse(stream, std::vector<bool>(stream.parts.size(), true)) {}

PacketCourse::PacketCourse(TrafficStream const& stream, std::vector<bool> const& areWanted)
    : stream_(&stream) {
    for (std::size_t number = 0; number < stream.parts.size(); ++number) {
        StreamPart const& part = stream.parts[number];
        parts_.push_back({.flags = part.packets.flags(),
                          .times = part.packets.times().data(),
                          .next = 0,
                          .size = areWanted[number] ? part.packets.size() : 0,
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
    std::size_t const first = cursor->next;
    std::size_t const end = std::min<std::uint64_t>(
        endOfAttributes(*cursor), first + std::min<std::uint64_t>(most, cursor->size));
    StripColumns const columns(stream_->parts[part].packets);
    std::size_t after = first + 1;
    if (columns.isUsual(first)) {
        while (after + StripColumns::kBlock <= end && cursor->times[after] < until &&
               cursor->times[after + StripColumns::kBlock - 1] < until && columns.goOn(after)) {
            after += StripColumns::kBlock;
        }
        while (after < end && cursor->times[after] < until && columns.goesOn(after)) {
            ++after;
        }
    }
    cursor->next = after;
    if (parts_.size() > 1) {
        settle(*cursor);
    }
    return {.first = {.part = static_cast<std::uint32_t>(part),
                      .packet = static_cast<std::uint32_t>(first)},
            .count = static_cast<std::uint32_t>(after - first)};
}

bool PacketCourse::goOnInSeveral(PacketRef& next) {
    std::int64_t until = 0;
    Cursor* const earliest = nextPart(until);
    if (earliest == nullptr) {
        return false;
    }
    next = {.part = static_cast<std::uint32_t>(earliest - parts_.data()),
            .packet = static_cast<std::uint32_t>(earliest->next)};
    ++earliest->next;
    settle(*earliest);
    return true;
}

}  // namespace TalIec61850Analysis::detail
