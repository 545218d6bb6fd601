#include <TalIec61850Analysis/traffic/MessageOrder.hpp>
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

bool isNext(MessageNumber now, MessageNumber before) {
    if (now.stNum == before.stNum) {
        return isLater(now.sqNum, before.sqNum) && stepsBetween(before.sqNum, now.sqNum) == 1;
    }
    return isLater(now.stNum, before.stNum) && stepsBetween(before.stNum, now.stNum) == 1 &&
           now.sqNum <= 1;
}

}  // namespace TalIec61850Analysis::detail
