#include "tools/input/CaptureRecords.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kFileHeaderSize = 24;
constexpr std::size_t kRecordHeaderSize = 16;
constexpr std::size_t kBlockSize = std::size_t{1} << 20U;

[[noreturn]] void fail() { throw std::system_error(errno, std::generic_category()); }

std::uint32_t readNumber(std::span<std::uint8_t const> octets, bool isLittleEndian) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i) {
        number = number << 8U | octets[isLittleEndian ? sizeof number - 1 - i : i];
    }
    return number;
}

CaptureRecord readHeader(std::span<std::uint8_t const> octets, std::uint64_t position,
                         CaptureVariant variant) {
    auto const number = [&](std::size_t index) {
        return readNumber(octets.subspan(index * sizeof(std::uint32_t)), variant.isLittleEndian);
    };
    // In 32 bits, as the index has it.
    std::uint32_t const nanoseconds = number(1) * (variant.isNanosecond ? 1U : 1000U);
    return {.position = position,
            .time = toCaptureTime({.seconds = number(0), .nanoseconds = nanoseconds}),
            .capturedSize = number(2),
            .originalSize = number(3)};
}

}  // namespace

std::uint64_t CaptureRecord::framePosition() const { return position + kRecordHeaderSize; }

CaptureRecords::CaptureRecords(std::string const& path) : file_(openToRead(path)) {
    // Asked by its end, because a device has no size of its own.
    off_t const end = file_ ? ::lseek(file_.number(), 0, SEEK_END) : off_t{-1};
    if (end < 0) {
        fail();
    }
    fileSize_ = static_cast<std::uint64_t>(end);
    std::array<std::uint8_t, kCaptureStartSize> start{};
    auto const found = view(0, start.size());
    std::copy(found.begin(), found.end(), start.begin());
    variant_ = recogniseCapture(start).variant.value_or(CaptureVariant{});
    position_ = kFileHeaderSize;
    if (fileSize_ < kFileHeaderSize) {
        damage_ = "the file ends inside its header";
    }
}

std::optional<CaptureRecord> CaptureRecords::next() {
    if (damage_ || position_ == fileSize_) {
        return std::nullopt;
    }
    auto const header = view(position_, kRecordHeaderSize);
    if (header.size() < kRecordHeaderSize) {
        damage_ = fmt::format("the file ends inside the header of the record at {}", position_);
        return std::nullopt;
    }
    CaptureRecord record = readHeader(header, position_, variant_);
    std::uint64_t const end = record.framePosition() + record.capturedSize;
    if (end > fileSize_) {
        damage_ =
            fmt::format("the file ends inside the record at {}: {} of its {} octets are missing",
                        position_, end - fileSize_, record.capturedSize);
        record.capturedSize = static_cast<std::uint32_t>(fileSize_ - record.framePosition());
        cutRecord_ = record;
        return std::nullopt;
    }
    position_ = end;
    return record;
}

std::span<std::uint8_t const> CaptureRecords::frameOf(CaptureRecord const& record) {
    return view(record.framePosition(), record.capturedSize);
}

/// @return fewer octets than asked for where the file ends
std::span<std::uint8_t const> CaptureRecords::view(std::uint64_t position, std::size_t size) {
    bool const isHeld =
        position >= blockPosition_ && position + size <= blockPosition_ + block_.size();
    if (!isHeld) {
        load(position, std::max(size, kBlockSize));
    }
    std::span<std::uint8_t const> const behind =
        std::span(block_).subspan(static_cast<std::size_t>(position - blockPosition_));
    return behind.first(std::min(size, behind.size()));
}

void CaptureRecords::load(std::uint64_t position, std::size_t size) {
    std::uint64_t const left = fileSize_ - std::min(position, fileSize_);
    block_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size, left)));
    blockPosition_ = position;
    // Fewer, should the file have become shorter meanwhile.
    block_.resize(readAt(file_, position, block_));
}

}  // namespace TalIec61850Tools
