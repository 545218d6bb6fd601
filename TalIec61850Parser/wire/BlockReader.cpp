#include <TalIec61850Parser/wire/BlockReader.hpp>
#include <algorithm>
#include <span>
#include <system_error>
#include <utility>

namespace TalIec61850Parser::wire {

BlockReader::BlockReader(Read read, bool readAhead, StartThread start)
    : read_(std::move(read)), start_(start), wantsReadAhead_(readAhead) {}

BlockReader::BlockReader(BlockReader&&) noexcept = default;
BlockReader& BlockReader::operator=(BlockReader&&) noexcept = default;
BlockReader::~BlockReader() = default;

Octets BlockReader::next(Octets unread) {
    if (hasEnded_) {
        return unread;
    }
    hasEnded_ = true;  // unless the next octets say otherwise, and if they cannot be read
    Octets all;
    if (isReadingAhead()) {
        all = takeAhead(unread);
    } else {
        std::size_t const count = readOn(unread);
        all = {buffer_.get(), unread.size() + count};
    }
    hasEnded_ = all.size() == unread.size();
    return all;
}

bool BlockReader::isReadingAhead() {
    if (wantsReadAhead_ && ahead_ == nullptr && octetsRead_ >= kFirstBlockSize) {
        try {
            ahead_ = std::make_unique<ReadAhead>(read_, start_);
        } catch (std::system_error const&) {
            wantsReadAhead_ = false;
        }
    }
    return ahead_ != nullptr;
}

std::size_t BlockReader::readOn(Octets unread) {
    std::size_t const least = octetsRead_ < kFirstBlockSize ? kFirstBlockSize : kBlockSize;
    std::size_t const capacity = std::max(capacity_, least);
    moveToFront(unread, unread.size() < capacity ? capacity : 2 * unread.size());
    std::size_t const count = read_(std::span(buffer_.get(), capacity_).subspan(unread.size()));
    octetsRead_ += count;
    return count;
}

Octets BlockReader::takeAhead(Octets unread) {
    auto const block = ahead_->take();
    if (block.empty()) {
        return unread;
    }
    std::size_t const size = unread.size() + block.size();
    if (unread.size() <= ReadAhead::kHeadroom) {
        std::uint8_t* const front = block.data() - unread.size();
        std::copy(unread.begin(), unread.end(), front);
        ahead_->giveBack(1);
        return {front, size};
    }
    moveToFront(unread, size <= capacity_ ? capacity_ : 2 * size);
    std::copy(block.begin(), block.end(), buffer_.get() + unread.size());
    ahead_->giveBack(0);
    return {buffer_.get(), size};
}

void BlockReader::moveToFront(Octets octets, std::size_t capacity) {
    if (capacity > capacity_) {
        auto larger = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
        std::copy(octets.begin(), octets.end(), larger.get());
        buffer_ = std::move(larger);
        capacity_ = capacity;
    } else if (octets.data() != buffer_.get()) {
        // To the front, so that a copy from there on is right where both overlap.
        std::copy(octets.begin(), octets.end(), buffer_.get());
    }
}

}  // namespace TalIec61850Parser::wire
