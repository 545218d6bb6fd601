#include <sys/stat.h>

#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecogniseStart.hpp>
#include <TalIec61850Analysis/traffic/RecordSource.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace TalIec61850Analysis::detail {

namespace {

using TalIec61850Parser::wire::RecordHeader;

std::uint64_t fileSizeOf(Descriptor const& file) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) {
        throw std::system_error(errno, std::generic_category());
    }
    return static_cast<std::uint64_t>(status.st_size);
}

/// The last number in the file's header, whose upper half has other meanings.
std::uint16_t linkTypeOf(Descriptor const& file) {
    constexpr std::size_t kLinkTypeOffset = 20;
    std::array<std::uint8_t, sizeof(std::uint32_t)> octets{};
    auto const variant = recogniseStart(file).variant;
    if (!variant || readAt(file, kLinkTypeOffset, octets) < octets.size()) {
        return kLinkTypeEthernet;
    }
    return static_cast<std::uint16_t>(
        TalIec61850Parser::wire::readFileUint32(octets, 0, variant->isLittleEndian));
}

}  // namespace

RecordSource::RecordSource(std::string const& path) : records_(path) {
    Descriptor const file = openToRead(path);
    size_ = fileSizeOf(file);
    view_.record.linkType = linkTypeOf(file);
}

SourceView const* RecordSource::next() {
    auto const record = records_.next();
    if (!record) {
        return nullptr;
    }
    view_.record.frameOffset = record->frameOffset;
    view_.record.time = record->time;
    view_.record.capturedSize = record->capturedSize;
    view_.record.originalSize = record->originalSize;
    view_.frame = records_.frameOf(*record);
    return &view_;
}

FrameSource::FrameSource(std::string const& path) : file_(openToRead(path)) {
    auto const variant = recogniseStart(file_).variant;
    isLittleEndian_ = variant && variant->isLittleEndian;
}

Octets FrameSource::frameAt(std::uint64_t frameOffset) {
    Octets const header = view(frameOffset - RecordHeader::kSize, RecordHeader::kSize);
    if (header.size() < RecordHeader::kSize) {
        return {};
    }
    return view(frameOffset, RecordHeader::read(header, isLittleEndian_).inclLen);
}

Octets FrameSource::view(std::uint64_t fileOffset, std::size_t size) {
    constexpr std::size_t kBlockSize = std::size_t{64} << 10U;
    bool const isHeld =
        fileOffset >= blockOffset_ && fileOffset + size <= blockOffset_ + block_.size();
    if (!isHeld) {
        std::uint64_t const fileSize = fileSizeOf(file_);
        std::uint64_t const left = fileSize - std::min(fileOffset, fileSize);
        block_.resize(
            static_cast<std::size_t>(std::min<std::uint64_t>(std::max(size, kBlockSize), left)));
        block_.resize(readAt(file_, fileOffset, block_));
        blockOffset_ = fileOffset;
    }
    Octets const rest = Octets(block_).subspan(static_cast<std::size_t>(fileOffset - blockOffset_));
    return rest.first(std::min(size, rest.size()));
}

}  // namespace TalIec61850Analysis::detail
