#include <TalIec61850Scl/match/FileCourse.hpp>
#include <algorithm>
#include <tuple>

namespace TalIec61850Scl::detail {

using TalIec61850Analysis::PacketColumns;

FileCourse::FileCourse(std::vector<PacketColumns const*> const& columns)
    : isLeft_(columns.size(), false) {
    for (std::size_t number = 0; number < columns.size(); ++number) {
        Cursor cursor{.packets = columns[number], .place = {.columns = number}};
        if (settle(cursor)) {
            cursors_.push_back(cursor);
        }
    }
    std::make_heap(cursors_.begin(), cursors_.end(), isLater);
}

bool FileCourse::isLater(Cursor const& a, Cursor const& b) {
    return std::tie(a.place.frameOffset, a.place.asdu) >
           std::tie(b.place.frameOffset, b.place.asdu);
}

/// Goes to the next packet that is to be given.
/// @return false after the last
bool FileCourse::settle(Cursor& cursor) const {
    auto const flags = cursor.packets->flags();
    std::uint32_t& packet = cursor.place.packet;
    while (packet < flags.size() && (flags[packet].isCopy() || flags[packet].isDuplicate())) {
        ++packet;
    }
    if (packet >= flags.size() || isLeft_[cursor.place.columns]) {
        return false;
    }
    cursor.place.frameOffset = cursor.packets->frameOffsets()[packet];
    auto const asdus = cursor.packets->asdus();
    cursor.place.asdu = asdus.empty() ? std::uint16_t{0} : asdus[packet];
    return true;
}

std::optional<FilePacket> FileCourse::next() {
    if (cursors_.empty()) {
        return std::nullopt;
    }
    std::pop_heap(cursors_.begin(), cursors_.end(), isLater);
    Cursor& cursor = cursors_.back();
    FilePacket const packet = cursor.place;
    ++cursor.place.packet;
    if (settle(cursor)) {
        std::push_heap(cursors_.begin(), cursors_.end(), isLater);
    } else {
        cursors_.pop_back();
    }
    return packet;
}

}  // namespace TalIec61850Scl::detail
