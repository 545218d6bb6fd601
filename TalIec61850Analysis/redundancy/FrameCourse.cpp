#include <TalIec61850Analysis/redundancy/FrameCourse.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

FrameCourse::FrameCourse(TrafficIndex const& index, RedundantSources const& sources,
                         std::span<TapClock const> clocks)
    : sources_(&sources), files_(index.files().size()) {
    for (std::size_t file = 0; file < files_.size(); ++file) {
        files_[file].clock = clocks[file];
    }
    begin(index, std::nullopt);
}

FrameCourse::FrameCourse(TrafficIndex const& index, RedundantSources const& sources,
                         std::uint32_t file)
    : sources_(&sources), files_(index.files().size()) {
    begin(index, file);
}

void FrameCourse::begin(TrafficIndex const& index, std::optional<std::uint32_t> wanted) {
    for (std::size_t file = 0; file < files_.size(); ++file) {
        files_[file].number = static_cast<std::uint32_t>(file);
    }
    for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
        if (sources_->sourceOf(stream) == RedundantSources::kNone) {
            continue;
        }
        TrafficStream const& of = index.streams()[stream];
        for (std::uint32_t part = 0; part < of.parts.size(); ++part) {
            Cursor cursor{.packets = &of.parts[part].packets,
                          .stream = static_cast<std::uint32_t>(stream),
                          .part = part};
            if ((!wanted || *wanted == of.parts[part].file) && settle(cursor)) {
                files_[of.parts[part].file].cursors.push_back(cursor);
            }
        }
    }
    std::erase_if(files_, [](File const& file) { return file.cursors.empty(); });
    for (File& file : files_) {
        std::make_heap(file.cursors.begin(), file.cursors.end(), isLaterInFile);
        setTime(file);
    }
    std::make_heap(files_.begin(), files_.end(), isLater);
}

bool FrameCourse::settle(Cursor& cursor) {
    std::size_t const size = cursor.packets->size();
    while (cursor.next < size && !RedundantSources::isWanted(*cursor.packets, cursor.next)) {
        ++cursor.next;
    }
    if (cursor.next == size) {
        return false;
    }
    cursor.offset = cursor.packets->frameOffsets()[cursor.next];
    return true;
}

void FrameCourse::setTime(File& file) {
    Cursor const& first = file.cursors.front();
    file.time = shiftedTime(first.packets->times()[first.next], -file.clock.offset);
}

void FrameCourse::advance(File& file) {
    auto& cursors = file.cursors;
    std::pop_heap(cursors.begin(), cursors.end(), isLaterInFile);
    ++cursors.back().next;
    if (settle(cursors.back())) {
        std::push_heap(cursors.begin(), cursors.end(), isLaterInFile);
    } else {
        cursors.pop_back();
    }
}

CourseFrame const* FrameCourse::next() {
    if (files_.empty()) {
        return nullptr;
    }
    std::pop_heap(files_.begin(), files_.end(), isLater);
    File& file = files_.back();
    Cursor const& first = file.cursors.front();
    frame_.file = file.number;
    frame_.source = sources_->sourceOf(first.stream);
    frame_.frameOffset = first.offset;
    frame_.time = first.packets->times()[first.next];
    frame_.sequence = first.packets->redundancySequences()[first.next];
    frame_.flags = first.packets->flags()[first.next];
    frame_.packets.clear();
    // Its ASDUs: those of one stream follow one another.
    while (!file.cursors.empty() && file.cursors.front().offset == frame_.frameOffset) {
        Cursor const& at = file.cursors.front();
        if (frame_.packets.empty() || frame_.packets.back().stream != at.stream) {
            frame_.packets.push_back(
                {.stream = at.stream,
                 .packet = {.part = at.part, .packet = static_cast<std::uint32_t>(at.next)}});
        }
        advance(file);
    }
    if (file.cursors.empty()) {
        files_.pop_back();
    } else {
        setTime(file);
        std::push_heap(files_.begin(), files_.end(), isLater);
    }
    return &frame_;
}

}  // namespace TalIec61850Analysis::detail
