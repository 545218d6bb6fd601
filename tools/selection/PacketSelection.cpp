#include "tools/selection/PacketSelection.hpp"

#include <algorithm>
#include <tuple>

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// Times first, then the order of the files and in them.
auto orderOf(SelectedPacket const& packet) {
    return std::tuple(packet.time(), packet.file, packet.frameOffset());
}

void sortPackets(std::vector<SelectedPacket>& packets) {
    std::stable_sort(
        packets.begin(), packets.end(),
        [](SelectedPacket const& a, SelectedPacket const& b) { return orderOf(a) < orderOf(b); });
}

}  // namespace

bool PacketSelection::Head::comesAfter(Head const& other) const {
    auto const key = [](Head const& head) {
        return std::tie(head.time, head.file, head.frameOffset, head.asdu);
    };
    return key(other) < key(*this);
}

PacketSelection::PacketSelection(TrafficIndex const& index, PacketWish wish,
                                 HeaderReader const& headOf)
    : index_(index), wish_(std::move(wish)) {
    for (TrafficStream const& stream : index_.streams()) {
        if (!wish_.criteria.admitKey(stream.key)) {
            continue;
        }
        ++streamCount_;
        for (StreamPart const& part : stream.parts) {
            addPart(stream, part);
            addTimeless(stream, part);
        }
    }
    for (std::uint32_t file = 0; file < index_.files().size(); ++file) {
        addUnread(file, headOf);
    }
    sortPackets(unread_);
    sortPackets(timeless_);
    rewind();
}

void PacketSelection::addPart(TrafficStream const& stream, StreamPart const& part) {
    auto const [first, last] = part.packets.placesIn(wish_.window);
    Cursor cursor{.stream = &stream,
                  .part = &part,
                  .packets = PartPackets(wish_.criteria, index_, part),
                  .before = {},
                  .next = first,
                  .end = last};
    if (wish_.withContext && stream.key.protocol == Protocol::goose) {
        for (std::size_t place = first; place > 0 && !cursor.before; --place) {
            if (cursor.packets.admitFirst(part.packets.inTimeOrder(place - 1))) {
                cursor.before = place - 1;
            }
        }
        cursor.isAfterWanted = true;
    }
    begin_.push_back(cursor);
}

void PacketSelection::addTimeless(TrafficStream const& stream, StreamPart const& part) {
    bool const isWindow = wish_.window.from || wish_.window.to;
    if (isWindow || part.packets.timedSize() == part.packets.size()) {
        return;
    }
    PartPackets packets(wish_.criteria, index_, part);
    for (std::uint32_t packet = 0; packet < part.packets.size(); ++packet) {
        if (!part.packets.time(packet) && packets.admitFirst(packet)) {
            timeless_.push_back({.stream = &stream,
                                 .part = &part,
                                 .attributes = &packets.attributesOf(packet),
                                 .packet = packet,
                                 .file = part.file});
        }
    }
}

void PacketSelection::addUnread(std::uint32_t file, HeaderReader const& headOf) {
    bool const needsHeader = wish_.criteria.needHeader();
    bool const isWindow = wish_.window.from || wish_.window.to;
    for (UnreadFrame const& frame : index_.files()[file].summary.unread) {
        bool const isInside = frame.time ? wish_.window.contains(*frame.time) : !isWindow;
        if (isInside &&
            wish_.criteria.admitUnread(
                frame.protocol, needsHeader ? headOf(file, frame.frameOffset) : FrameHeader())) {
            (frame.time ? unread_ : timeless_).push_back({.file = file, .unread = &frame});
        }
    }
}

void PacketSelection::rewind() {
    cursors_ = begin_;
    heads_.clear();
    nextUnread_ = 0;
    nextTimeless_ = 0;
    for (std::uint32_t number = 0; number < cursors_.size(); ++number) {
        if (auto const head = takeHead(number)) {
            heads_.push_back(*head);
        }
    }
    std::make_heap(heads_.begin(), heads_.end(),
                   [](Head const& a, Head const& b) { return a.comesAfter(b); });
}

PacketSelection::Found PacketSelection::findNext(Cursor& cursor) {
    PacketColumns const& columns = cursor.part->packets;
    if (cursor.before) {
        return std::pair(*std::exchange(cursor.before, std::nullopt), Place::before);
    }
    while (cursor.next < cursor.end) {
        std::size_t const place = cursor.next++;
        if (cursor.packets.admitFirst(columns.inTimeOrder(place))) {
            return std::pair(place, Place::inside);
        }
    }
    if (std::exchange(cursor.isAfterWanted, false)) {
        for (std::size_t place = cursor.end; place < columns.timedSize(); ++place) {
            if (cursor.packets.admitFirst(columns.inTimeOrder(place))) {
                return std::pair(place, Place::after);
            }
        }
    }
    return std::nullopt;
}

std::optional<PacketSelection::Head> PacketSelection::takeHead(std::uint32_t number) {
    Cursor& cursor = cursors_[number];
    Found const found = findNext(cursor);
    if (!found) {
        return std::nullopt;
    }
    PacketColumns const& columns = cursor.part->packets;
    auto const packet = static_cast<std::uint32_t>(columns.inTimeOrder(found->first));
    return Head{.time = columns.times()[packet],
                .frameOffset = columns.frameOffsets()[packet],
                .file = cursor.part->file,
                .asdu = columns.asdus().empty() ? std::uint16_t{0} : columns.asdus()[packet],
                .cursor = number,
                .packet = packet,
                .place = found->second};
}

std::optional<SelectedPacket> PacketSelection::next() {
    bool const isUnreadLeft = nextUnread_ < unread_.size();
    if (heads_.empty()) {
        if (isUnreadLeft) {
            return unread_[nextUnread_++];
        }
        return nextTimeless_ < timeless_.size() ? std::optional(timeless_[nextTimeless_++])
                                                : std::nullopt;
    }
    Head const head = heads_.front();
    Cursor& cursor = cursors_[head.cursor];
    SelectedPacket const packet{.stream = cursor.stream,
                                .part = cursor.part,
                                .attributes = &cursor.packets.attributesOf(head.packet),
                                .packet = head.packet,
                                .file = head.file,
                                .place = head.place};
    if (isUnreadLeft && orderOf(unread_[nextUnread_]) < orderOf(packet)) {
        return unread_[nextUnread_++];
    }
    if (auto const following = takeHead(head.cursor)) {
        replaceFirst(*following);
    } else {
        std::pop_heap(heads_.begin(), heads_.end(),
                      [](Head const& a, Head const& b) { return a.comesAfter(b); });
        heads_.pop_back();
    }
    return packet;
}

void PacketSelection::replaceFirst(Head const& head) {
    std::size_t place = 0;
    for (std::size_t child = 1; child < heads_.size(); child = 2 * place + 1) {
        if (child + 1 < heads_.size() && heads_[child].comesAfter(heads_[child + 1])) {
            ++child;
        }
        if (!head.comesAfter(heads_[child])) {
            break;
        }
        heads_[place] = heads_[child];
        place = child;
    }
    heads_[place] = head;
}

}  // namespace TalIec61850Tools
