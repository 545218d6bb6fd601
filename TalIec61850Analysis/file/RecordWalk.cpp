#include <TalIec61850Analysis/file/RecordWalk.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

std::span<RecordView const> RecordWalk::next() {
    walked_.clear();
    while (walked_.isEmpty() && !walked_.isFinished()) {
        std::size_t const used = skipped_ > 0 ? 0 : decodeSome();
        if (used > 0) {
            use(used);
        } else if (!walked_.isFinished()) {
            readOn();
        }
    }
    return {walked_.begin(), walked_.end()};
}

std::size_t RecordWalk::decodeSome() {
    return std::visit([&](auto& decoder) { return decoder.decode(unread_, position_, walked_); },
                      decoder_);
}

/// @param count  may be more than has been read. The records that were decoded are still shown, so
///               that nothing can be read yet.
void RecordWalk::use(std::size_t count) {
    position_ += count;
    std::size_t const there = std::min(count, unread_.size());
    skipped_ = count - there;
    unread_ = unread_.subspan(there);
}

void RecordWalk::readOn() {
    std::size_t const before = unread_.size();
    try {
        unread_ = blocks_.next(unread_);
    } catch (...) {
        unread_ = {};
        walked_.finish();
        throw;
    }
    if (unread_.size() == before) {
        walked_.finish(
            {.kind = CaptureDamageKind::fileShrank, .fileOffset = position_ - skipped_ + before});
        return;
    }
    auto const there = static_cast<std::size_t>(std::min<std::uint64_t>(skipped_, unread_.size()));
    skipped_ -= there;
    unread_ = unread_.subspan(there);
}

}  // namespace TalIec61850Analysis::detail
