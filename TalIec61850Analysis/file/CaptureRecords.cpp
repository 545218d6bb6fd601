#include <unistd.h>

#include <TalIec61850Analysis/file/CaptureRecords.hpp>
#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecogniseStart.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <algorithm>
#include <cerrno>
#include <system_error>

namespace TalIec61850Analysis {

namespace {

using TalIec61850Parser::wire::kGlobalHeaderSize;
using TalIec61850Parser::wire::RecordHeader;

constexpr std::size_t kBlockSize = std::size_t{1} << 20U;

/// Asked by its end, because a device has no size of its own.
std::uint64_t sizeOf(Descriptor const& file) {
    off_t const end = ::lseek(file.number(), 0, SEEK_END);
    if (end < 0) {
        throw std::system_error(errno, std::generic_category());
    }
    return static_cast<std::uint64_t>(end);
}

}  // namespace

CaptureRecords::CaptureRecords(std::string const& path)
    : file_(detail::openToRead(path)), fileSize_(sizeOf(file_)), nextOffset_(kGlobalHeaderSize) {
    auto const variant = detail::recogniseStart(file_).variant;
    if (!variant) {
        damage_ = {.kind = CaptureDamageKind::notCapture};
        return;
    }
    isNanosecond_ = variant->isNanosecond;
    isLittleEndian_ = variant->isLittleEndian;
    if (fileSize_ < kGlobalHeaderSize) {
        damage_ = {.kind = CaptureDamageKind::fileHeaderCut};
    }
}

std::optional<CaptureRecord> CaptureRecords::next() {
    if (damage_ || nextOffset_ == fileSize_) {
        return std::nullopt;
    }
    auto const header = view(nextOffset_, RecordHeader::kSize);
    if (header.size() < RecordHeader::kSize) {
        damage_ = {.kind = CaptureDamageKind::recordHeaderCut, .fileOffset = nextOffset_};
        return std::nullopt;
    }
    CaptureRecord record = readHeader(header);
    std::uint64_t const end = record.frameOffset + record.capturedSize;
    if (end > fileSize_) {
        damage_ = {.kind = CaptureDamageKind::recordCut,
                   .fileOffset = nextOffset_,
                   .claimedSize = record.capturedSize,
                   .missingSize = end - fileSize_};
        record.capturedSize = static_cast<std::uint32_t>(fileSize_ - record.frameOffset);
        cutRecord_ = record;
        return std::nullopt;
    }
    nextOffset_ = end;
    return record;
}

std::span<std::uint8_t const> CaptureRecords::frameOf(CaptureRecord const& record) {
    return view(record.frameOffset, record.capturedSize);
}

CaptureRecord CaptureRecords::readHeader(std::span<std::uint8_t const> header) const {
    auto const read = RecordHeader::read(header, isLittleEndian_);
    auto const nanoseconds = TalIec61850Parser::wire::toNanoseconds(read.tsUsec, isNanosecond_);
    return {.fileOffset = nextOffset_,
            .frameOffset = nextOffset_ + RecordHeader::kSize,
            .time = makeCaptureTime(read.tsSec, nanoseconds),
            .capturedSize = read.inclLen,
            .originalSize = read.origLen};
}

/// @return fewer octets than asked for where the file ends
std::span<std::uint8_t const> CaptureRecords::view(std::uint64_t fileOffset, std::size_t size) {
    bool const isHeld =
        fileOffset >= blockOffset_ && fileOffset + size <= blockOffset_ + block_.size();
    if (!isHeld) {
        load(fileOffset, std::max(size, kBlockSize));
    }
    auto const rest =
        std::span(block_).subspan(static_cast<std::size_t>(fileOffset - blockOffset_));
    return rest.first(std::min(size, rest.size()));
}

void CaptureRecords::load(std::uint64_t fileOffset, std::size_t size) {
    std::uint64_t const left = fileSize_ - std::min(fileOffset, fileSize_);
    block_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size, left)));
    blockOffset_ = fileOffset;
    // Fewer, should the file have become shorter meanwhile.
    block_.resize(detail::readAt(file_, fileOffset, block_));
}

}  // namespace TalIec61850Analysis
