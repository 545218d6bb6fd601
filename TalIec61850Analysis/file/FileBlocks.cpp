#include <TalIec61850Analysis/file/FileBlocks.hpp>
#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Analysis::detail {

std::span<std::uint8_t const> FileBlocks::next(std::span<std::uint8_t const> unread) {
    std::uint64_t const left = end_ - std::min(fileOffset_, end_);
    auto const wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(std::max(unread.size(), kBlockSize), left));
    std::size_t const size = unread.size() + wanted;
    if (buffer_.size() < size) {
        std::vector<std::uint8_t> larger(size);
        std::copy(unread.begin(), unread.end(), larger.begin());
        buffer_ = std::move(larger);
    } else {
        // Towards the front of the same buffer.
        std::copy(unread.begin(), unread.end(), buffer_.begin());
    }
    std::size_t const count =
        readAt(*file_, fileOffset_, std::span(buffer_).subspan(unread.size(), wanted));
    fileOffset_ += count;
    return std::span(buffer_).first(unread.size() + count);
}

}  // namespace TalIec61850Analysis::detail
