#include "tools/selection/FrameReader.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureFile;
using TalIec61850Analysis::RecordView;

namespace {

constexpr std::size_t kMostOpen = 16;
/// Records up to as many octets ahead are walked over; beyond that, the record is looked for.
constexpr std::uint64_t kMostWalked = 1U << 20U;

}  // namespace

FrameReader::OpenCapture& FrameReader::open(std::uint32_t file) {
    auto const found = std::find_if(open_.begin(), open_.end(), [&](OpenCapture const& capture) {
        return capture.number == file;
    });
    if (found != open_.end()) {
        open_.splice(open_.begin(), open_, found);
        return open_.front();
    }
    if (open_.size() == kMostOpen) {
        open_.pop_back();
    }
    open_.push_front({.number = file, .capture = CaptureFile(paths_[file])});
    open_.front().current = open_.front().capture.next();
    return open_.front();
}

RecordView const& FrameReader::read(std::uint32_t file, std::uint64_t frameOffset) {
    OpenCapture& from = open(file);
    RecordView const*& current = from.current;
    while (current != nullptr && current->record.frameOffset < frameOffset &&
           frameOffset - current->record.frameOffset <= kMostWalked) {
        current = from.capture.next();
    }
    if (current != nullptr && current->record.frameOffset == frameOffset) {
        return *current;
    }
    auto const record = from.capture.recordAt(frameOffset);
    if (!record || record->frameOffset != frameOffset) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    from.found = {*record, from.capture.frameOf(*record)};
    if (from.found.frame.size() != record->capturedSize) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    return from.found;
}

}  // namespace TalIec61850Tools
