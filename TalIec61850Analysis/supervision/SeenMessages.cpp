#include <TalIec61850Analysis/supervision/SeenMessages.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

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
