#include <TalIec61850Analysis/redundancy/IndexedFrames.hpp>
#include <algorithm>
#include <cerrno>
#include <system_error>

namespace TalIec61850Analysis::detail {

IndexedFrames::Open& IndexedFrames::openOf(std::uint32_t file) {
    auto const known = std::find_if(open_.begin(), open_.end(),
                                    [&](Open const& open) { return open.file == file; });
    if (known != open_.end()) {
        open_.splice(open_.begin(), open_, known);
        return open_.front();
    }
    if (open_.size() == kMostOpen) {
        open_.pop_back();
    }
    open_.push_front({.file = file,
                      .capture = CaptureFile(index_->files()[file].summary.path),
                      .isAgain = wereOpen_[file]});
    wereOpen_[file] = true;
    if (!open_.front().isAgain) {
        open_.front().last = open_.front().capture.next();
    }
    return open_.front();
}

RecordView const& IndexedFrames::at(std::uint32_t file, std::uint64_t frameOffset) {
    Open& open = openOf(file);
    // Reading on is much faster than seeking.
    while (open.last != nullptr && open.last->record.frameOffset < frameOffset) {
        open.last = open.capture.next();
    }
    if (open.last != nullptr && open.last->record.frameOffset == frameOffset) {
        return *open.last;
    }
    auto const record = open.capture.recordAt(frameOffset);
    if (!record || record->frameOffset != frameOffset) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    found_ = {.record = *record, .frame = open.capture.frameOf(*record)};
    return found_;
}

}  // namespace TalIec61850Analysis::detail
