#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/PacketFrames.hpp>
#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <algorithm>

namespace TalIec61850Analysis {

namespace {

std::uint64_t endOf(CaptureRecord const& record) {
    return record.frameOffset + record.capturedSize;
}

bool hasInFrame(CaptureRecord const& record, std::uint64_t fileOffset) {
    return record.frameOffset <= fileOffset && fileOffset < endOf(record);
}

}  // namespace

PacketFrames::PacketFrames(std::string const& path, std::vector<std::uint64_t> fileOffsets)
    : path_(path) {
    CaptureFile file(path);
    std::sort(fileOffsets.begin(), fileOffsets.end());
    auto wanted = fileOffsets.begin();
    auto const keepIfWanted = [&](CaptureRecord const& record) {
        wanted = std::lower_bound(wanted, fileOffsets.end(), record.frameOffset);
        if (wanted != fileOffsets.end() && hasInFrame(record, *wanted)) {
            found_.push_back(record);
        }
    };
    while (wanted != fileOffsets.end()) {
        auto const* const view = file.next();
        if (view == nullptr) {
            break;
        }
        keepIfWanted(view->record);
    }
    if (auto const* const cut = file.cutRecord()) {
        keepIfWanted(cut->record);
    }
}

std::optional<CaptureRecord> PacketFrames::recordAt(std::uint64_t fileOffset) const {
    auto const found = std::partition_point(
        found_.begin(), found_.end(),
        [&](CaptureRecord const& record) { return endOf(record) <= fileOffset; });
    return found != found_.end() && hasInFrame(*found, fileOffset) ? std::optional(*found)
                                                                   : std::nullopt;
}

std::vector<std::uint8_t> PacketFrames::frameOf(CaptureRecord const& record) {
    if (!file_) {
        file_ = detail::openToRead(path_);
    }
    std::vector<std::uint8_t> frame(record.capturedSize);
    frame.resize(detail::readAt(file_, record.frameOffset, frame));
    return frame;
}

}  // namespace TalIec61850Analysis
