#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/traffic/CaptureWindow.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

CaptureWindow::CaptureWindow(TrafficIndex const& index) {
    for (IndexedFile const& file : index.files()) {
        paths_.push_back(file.summary.path);
    }
}

void CaptureWindow::open(std::uint32_t file) {
    current_ = nullptr;
    auto const known = std::find_if(open_.begin(), open_.end(),
                                    [&](Open const& open) { return open.number == file; });
    if (known != open_.end()) {
        open_.splice(open_.begin(), open_, known);
    } else {
        if (open_.size() == kMostOpen) {
            open_.pop_back();
        }
        open_.push_front({.number = file,
                          .file = openToRead(paths_[file]),
                          .octets = std::make_unique_for_overwrite<std::uint8_t[]>(kWindow)});
    }
    current_ = &open_.front();
}

Octets CaptureWindow::readAround(std::uint32_t file, std::uint64_t fileOffset, std::size_t size) {
    open(file);
    std::uint64_t const end = current_->start + current_->size;
    if (fileOffset < current_->start || fileOffset + size > end) {
        // What is asked for next is mostly after this.
        current_->size = 0;
        current_->start = fileOffset - std::min<std::uint64_t>(fileOffset, kBefore);
        current_->size = readAt(current_->file, current_->start, {current_->octets.get(), kWindow});
    }
    std::uint64_t const held = current_->start + current_->size;
    if (fileOffset >= held) {
        return {};
    }
    return {current_->octets.get() + (fileOffset - current_->start),
            std::min<std::size_t>(size, held - fileOffset)};
}

}  // namespace TalIec61850Analysis::detail
