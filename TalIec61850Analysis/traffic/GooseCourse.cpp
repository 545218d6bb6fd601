#include <TalIec61850Analysis/traffic/GooseCourse.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

GooseCourse::GooseCourse(TrafficIndex const& index, std::vector<bool> const& areWanted)
    : files_(index.files().size()) {
    for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
        if (areWanted[stream]) {
            add(index, stream);
        }
    }
    begin();
}

GooseCourse::GooseCourse(TrafficIndex const& index, std::size_t stream)
    : files_(index.files().size()) {
    add(index, stream);
    begin();
}

void GooseCourse::add(TrafficIndex const& index, std::size_t stream) {
    TrafficStream const& of = index.streams()[stream];
    if (of.key.protocol != StreamProtocol::goose) {
        return;
    }
    for (std::uint32_t part = 0; part < of.parts.size(); ++part) {
        Cursor cursor{.packets = &of.parts[part].packets, .stream = stream, .part = part};
        if (settle(cursor)) {
            files_[of.parts[part].file].cursors.push_back(cursor);
        }
    }
}

void GooseCourse::begin() {
    std::erase_if(files_, [](File const& file) { return file.cursors.empty(); });
    for (File& file : files_) {
        std::make_heap(file.cursors.begin(), file.cursors.end(), isLater);
        setTime(file);
    }
}

bool GooseCourse::settle(Cursor& cursor) {
    auto const flags = cursor.packets->flags();
    while (cursor.next < flags.size() &&
           (flags[cursor.next].isCopy() || flags[cursor.next].isDuplicate())) {
        ++cursor.next;
    }
    if (cursor.next == flags.size()) {
        return false;
    }
    cursor.offset = cursor.packets->frameOffsets()[cursor.next];
    return true;
}

void GooseCourse::setTime(File& file) {
    Cursor const& first = file.cursors.front();
    std::int64_t const time = first.packets->times()[first.next];
    file.time = time == kNoTime ? file.time : time;
}

std::optional<CourseMessage> GooseCourse::next() {
    if (files_.empty()) {
        return std::nullopt;
    }
    auto const file =
        files_.size() == 1
            ? files_.begin()
            : std::min_element(files_.begin(), files_.end(),
                               [](File const& a, File const& b) { return a.time < b.time; });
    auto& cursors = file->cursors;
    if (cursors.size() > 1) {
        std::pop_heap(cursors.begin(), cursors.end(), isLater);
    }
    Cursor& cursor = cursors.back();
    CourseMessage const message{
        .stream = cursor.stream,
        .packet = {.part = cursor.part, .packet = static_cast<std::uint32_t>(cursor.next)}};
    ++cursor.next;
    if (!settle(cursor)) {
        cursors.pop_back();
        if (cursors.empty()) {
            files_.erase(file);
            return message;
        }
    } else if (cursors.size() > 1) {
        std::push_heap(cursors.begin(), cursors.end(), isLater);
    }
    setTime(*file);
    return message;
}

}  // namespace TalIec61850Analysis::detail
