#include <TalIec61850Analysis/supervision/SeenMessages.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

namespace {

/// Counters so near to their ends have begun again.
constexpr std::uint32_t kNearEnd = 0xFFFF'0000;
constexpr std::uint32_t kNearStart = 0x1'0000;

bool hasBegunAgain(std::uint32_t small, std::uint32_t large) {
    return large >= kNearEnd && small < kNearStart;
}

}  // namespace

std::uint64_t stepsBetween(std::uint32_t before, std::uint32_t now) {
    if (hasBegunAgain(now, before)) {
        // 0 or 1 comes after the largest.
        return std::uint64_t{~before} + std::max<std::uint32_t>(now, 1);
    }
    return std::uint64_t{now} - before;
}

bool isLater(std::uint32_t now, std::uint32_t before) {
    if (hasBegunAgain(now, before)) {
        return true;
    }
    return now > before && !hasBegunAgain(before, now);
}

bool isLater(MessageNumber now, MessageNumber before) {
    return now.stNum == before.stNum ? isLater(now.sqNum, before.sqNum)
                                     : isLater(now.stNum, before.stNum);
}

void SeenMessages::begin(MessageNumber first) {
    first_ = first;
    current_ = {first.stNum, first.sqNum, first.sqNum};
    runs_.clear();
    isForgetful_ = false;
}

void SeenMessages::keep(Run run) {
    if (runs_.size() == kMostRuns) {
        MessageNumber const oldest{runs_.front().stNum, runs_.front().last};
        if (!isForgetful_ || isLater(oldest, forgotten_)) {
            forgotten_ = oldest;
        }
        isForgetful_ = true;
        runs_.pop_front();
    }
    runs_.push_back(run);
}

bool SeenMessages::has(MessageNumber message) const {
    auto const isIn = [&](Run const& run) {
        return run.stNum == message.stNum && run.first <= message.sqNum &&
               message.sqNum <= run.last;
    };
    if (isIn(current_) || std::any_of(runs_.begin(), runs_.end(), isIn)) {
        return true;
    }
    return isForgetful_ && !isLater(message, forgotten_) && !isLater(first_, message);
}

}  // namespace TalIec61850Analysis::detail
